// Tinted panels with lines between them.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "pixels/columns.h"

#include <array>
#include <initializer_list>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
namespace rows = pixels::rows;

// Lines throw shadows five pixels wide on the panels beside them.
constexpr int kShadow = 5;
constexpr std::array<int, kShadow> kTowardsLine{245, 224, 194, 153, 102};

enum class Stroke { tint, shadeRight, shadeLeft, line, greyRight, greyLeft };

// What is done to a run of columns. Right and left in a stroke say where the line lies that throws the
// shadow.
struct Ink {
    Stroke stroke;
    int r; ///< shares of 128 of full channels; a line has its value in r
    int g;
    int b;
};

constexpr Ink shadeRight(Ink tint) { return {Stroke::shadeRight, tint.r, tint.g, tint.b}; }
constexpr Ink shadeLeft(Ink tint) { return {Stroke::shadeLeft, tint.r, tint.g, tint.b}; }

constexpr Ink kWhite{Stroke::line, 255, 0, 0};
constexpr Ink kBlack{Stroke::line, 0, 0, 0};
constexpr Ink kGreyRight{Stroke::greyRight, 0, 0, 0};
constexpr Ink kGreyLeft{Stroke::greyLeft, 0, 0, 0};
constexpr Ink kRed{Stroke::tint, 86, 2, 2};
constexpr Ink kGreen{Stroke::tint, 21, 59, 7};
constexpr Ink kSky{Stroke::tint, 9, 62, 103};
constexpr Ink kBlue{Stroke::tint, 16, 5, 99};
constexpr Ink kPlum{Stroke::tint, 34, 15, 58};
constexpr Ink kRust{Stroke::tint, 63, 24, 14};
constexpr Ink kSand{Stroke::tint, 79, 59, 21};
constexpr Ink kSlate{Stroke::tint, 17, 46, 75};

// Columns up to `end`, from where the run before ended.
struct Run {
    Ink ink;
    int end;
};

// The bands of a picture, from its first row on. In pictures too small for a layout, ends may lie before
// their starts, or beyond the picture: such runs and bands are empty, and of two that overlap the later one
// is seen.
class Panels {
public:
    explicit Panels(pixels::Extent size) : w(size.width), h(size.height) { }

    const int w;
    const int h;

    /// Rows up to `endRow`, from where the band before ended; the last run ends with the row.
    void band(int endRow, std::initializer_list<Run> runs)
    {
        Band& added = bands_[std::size_t(count_++)];
        added.end = endRow;
        std::ranges::copy(runs, added.runs.begin());
        added.runCount = int(runs.size());
    }

    void drawRow(const Bgra* from, Bgra* to, int y) const
    {
        int start = 0;
        const Band* seen = nullptr;
        for (int i = 0; i < count_; ++i) {
            if (y >= start && y < bands_[std::size_t(i)].end)
                seen = &bands_[std::size_t(i)];
            start = bands_[std::size_t(i)].end;
        }
        int first = 0;
        for (int i = 0; i < seen->runCount; ++i) {
            const Run& run = seen->runs[std::size_t(i)];
            drawRun(from, to, first, run);
            first = run.end;
        }
    }

private:
    static constexpr int kMostBands = 9;
    static constexpr int kMostRuns = 7;
    struct Band {
        int end;
        int runCount;
        std::array<Run, kMostRuns> runs;
    };

    void drawRun(const Bgra* from, Bgra* to, int first, const Run& run) const
    {
        const auto draw = [=, begin = std::max(first, 0), end = std::min(run.end, w)](
                              auto kernel) { pixels::mapColumns(from, to, begin, end, kernel); };
        const auto tinted = [ink = run.ink](Bgra p) -> Bgra {
            const auto lifted = [](int c, int k) { return u8(c - (c * k >> 7) + k); };
            return {lifted(p.b, ink.b), lifted(p.g, ink.g), lifted(p.r, ink.r), p.a};
        };
        const auto shade = [first, last = run.end - 1](int x, bool lineIsRight) {
            return kTowardsLine[std::size_t(lineIsRight ? x - first : last - x)];
        };
        const auto shaded = [=](Bgra source, int s) -> Bgra {
            const Bgra p = tinted(source);
            return {u8(p.b * s >> 8), u8(p.g * s >> 8), u8(p.r * s >> 8), p.a};
        };
        switch (run.ink.stroke) {
        case Stroke::tint:
            return draw([=](int, Bgra p) { return tinted(p); });
        case Stroke::shadeRight:
            return draw([=](int x, Bgra p) { return shaded(p, shade(x, true)); });
        case Stroke::shadeLeft:
            return draw([=](int x, Bgra p) { return shaded(p, shade(x, false)); });
        case Stroke::line:
            return draw([value = u8(run.ink.r)](int, Bgra p) { return pixels::grey(p, value); });
        case Stroke::greyRight:
            return draw([=](int x, Bgra p) { return pixels::grey(p, u8(shade(x, true))); });
        case Stroke::greyLeft:
            return draw([=](int x, Bgra p) { return pixels::grey(p, u8(shade(x, false))); });
        }
    }

    std::array<Band, kMostBands> bands_;
    int count_ = 0;
};

// Layout A: two interlocking pieces.
void layOutA(Panels& p)
{
    const int w = p.w;
    const int q = p.w / 4;
    const int r = p.h / 4;
    p.band(r - 2, {{kRed, 3 * q - 2}, {kWhite, 3 * q + 1}, {kBlue, w}});
    p.band(r + 1, {{kRed, q - 2}, {kWhite, 2 * q + 1}, {kRed, 3 * q - 2}, {kWhite, 3 * q + 1}, {kBlue, w}});
    p.band(3 * r - 2,
        {{kRed, q - 2}, {kWhite, q + 1}, {kBlue, 2 * q - 2}, {kWhite, 2 * q + 1}, {kRed, 3 * q - 2},
            {kWhite, 3 * q + 1}, {kBlue, w}});
    p.band(3 * r + 1, {{kRed, q - 2}, {kWhite, q + 1}, {kBlue, 2 * q - 2}, {kWhite, 3 * q + 1}, {kBlue, w}});
    p.band(p.h, {{kRed, q - 2}, {kWhite, q + 1}, {kBlue, w}});
}

// Layout B: bricks.
void layOutB(Panels& p)
{
    const int w = p.w;
    const int a = p.w / 3;
    p.band(p.h / 2 - 1, {{kRed, 2 * a - 1}, {kBlack, 2 * a + 1}, {kGreen, w}});
    p.band(p.h / 2 + 1, {{kBlack, w}});
    p.band(p.h, {{kSky, a - 1}, {kBlack, a + 1}, {kBlue, w}});
}

// Layout C: a cross.
void layOutC(Panels& p)
{
    const int w = p.w;
    const int m = p.w / 2;
    p.band(p.h / 2 - 1, {{kPlum, m - 1}, {kBlack, m + 1}, {kRust, w}});
    p.band(p.h / 2 + 1, {{kBlack, w}});
    p.band(p.h, {{kSand, m - 1}, {kBlack, m + 1}, {kSlate, w}});
}

// Layout D: a framed window in the middle.
void layOutD(Panels& p)
{
    const int w = p.w;
    const int h = p.h;
    const int a = 2 * (w / 3);
    const int b = a - w / 2;
    const int c = 7 * (w / 8);
    const Ink greenShade = shadeRight(kGreen);
    const Ink skyShade = shadeRight(kSky);
    p.band(h / 4, {{kGreen, a - 6}, {greenShade, a - 1}, {kWhite, a + 2}, {kBlue, w}});
    p.band(h / 4 + 3, {{kGreen, b - 5}, {greenShade, b}, {kWhite, c}, {kBlue, w}});
    p.band(
        h / 2, {{kGreen, b - 5}, {greenShade, b}, {kWhite, b + 3}, {kRed, c - 3}, {kWhite, c}, {kBlue, w}});
    p.band(h / 2 + 3, {{kWhite, b + 3}, {kRed, c - 3}, {kWhite, c}, {kBlue, w}});
    p.band(
        h - h / 4, {{kSky, b - 5}, {skyShade, b}, {kWhite, b + 3}, {kRed, c - 3}, {kWhite, c}, {kBlue, w}});
    p.band(h - h / 4 + 3, {{kSky, b - 5}, {skyShade, b}, {kWhite, c}, {kBlue, w}});
    p.band(h - h / 8 - 3, {{kSky, a - 6}, {skyShade, a - 1}, {kWhite, a + 2}, {kBlue, w}});
    p.band(h - h / 8, {{kSky, a - 6}, {skyShade, a - 1}, {kWhite, w}});
    p.band(h, {{kSky, w}});
}

void layOutE(Panels& p)
{
    const int w = p.w;
    const int u = p.w * 47 / 100;
    const int v = p.w * 74 / 100;
    const int r1 = p.h * 34 / 100;
    const int r2 = p.h * 48 / 100;
    const int r3 = p.h * 55 / 100;
    const Ink fromBlue = shadeLeft(kBlue);
    const Ink toBlue = shadeRight(kBlue);
    const Ink fromRed = shadeLeft(kRed);
    const Ink toRed = shadeRight(kRed);
    p.band(r1, {{kGreen, u - 1}, {kWhite, u + 2}, {fromBlue, u + 7}, {kBlue, w}});
    p.band(r1 + 3,
        {{kGreen, u - 1}, {kWhite, u + 2}, {fromBlue, u + 7}, {kBlue, v - 5}, {toBlue, v}, {kWhite, w}});
    p.band(r2,
        {{kGreen, u - 1}, {kWhite, u + 2}, {fromBlue, u + 7}, {kBlue, v - 5}, {toBlue, v}, {kWhite, v + 3},
            {kSky, w}});
    p.band(r2 + 3,
        {{kGreen, u - 1}, {kWhite, u + 2}, {kGreyLeft, u + 7}, {kWhite, v - 5}, {kGreyRight, v},
            {kWhite, v + 3}, {kSky, w}});
    p.band(r3,
        {{kGreen, u - 1}, {kWhite, u + 2}, {fromRed, u + 7}, {kRed, v - 5}, {toRed, v}, {kWhite, v + 3},
            {kSky, w}});
    p.band(
        r3 + 3, {{kWhite, u + 2}, {fromRed, u + 7}, {kRed, v - 5}, {toRed, v}, {kWhite, v + 3}, {kSky, w}});
    p.band(p.h, {{kRed, v - 5}, {toRed, v}, {kWhite, v + 3}, {kSky, w}});
}

void layOutF(Panels& p)
{
    const int w = p.w;
    const int m = p.w / 2;
    const int u = p.w * 32 / 100;
    const int v = p.w * 45 / 100;
    const int r1 = p.h * 43 / 100;
    const int r2 = 3 * p.h / 5;
    const int r3 = p.h * 65 / 100;
    const Ink fromBlue = shadeLeft(kBlue);
    const Ink toGreen = shadeRight(kGreen);
    const Ink toSky = shadeRight(kSky);
    p.band(r1 - 1, {{kRed, m - 1}, {kWhite, m + 1}, {fromBlue, m + 6}, {kBlue, w}});
    p.band(r1 + 1, {{kWhite, m + 1}, {fromBlue, m + 6}, {kBlue, w}});
    p.band(r2 - 1, {{kGreen, v - 6}, {toGreen, v - 1}, {kWhite, v + 1}, {kBlue, w}});
    p.band(r2 + 1,
        {{kGreen, u - 6}, {toGreen, u - 1}, {kWhite, v - 6}, {kGreyRight, v - 1}, {kWhite, v + 1},
            {kBlue, w}});
    p.band(r3 - 1,
        {{kGreen, u - 6}, {toGreen, u - 1}, {kWhite, u + 1}, {kSky, v - 6}, {toSky, v - 1}, {kWhite, v + 1},
            {kBlue, w}});
    p.band(r3 + 1,
        {{kGreen, u - 6}, {toGreen, u - 1}, {kWhite, u + 1}, {kSky, v - 6}, {toSky, v - 1}, {kWhite, w}});
    p.band(p.h, {{kGreen, u - 6}, {toGreen, u - 1}, {kWhite, u + 1}, {kSky, w}});
}

template <void (*kLayOut)(Panels&)> i32 panels(const Frame& f)
{
    Panels layout(f.dst.extent());
    kLayOut(layout);
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([=, &layout, src = f.src, dst = f.dst] {
            for (int y = top; y < end; ++y)
                layout.drawRow(src.row(y).data(), dst.row(y).data(), y);
        });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 89,
        .entry = {.place = 83, .name = "Jigsaw_A", .guid = "52535B89-F700-43c1-992F-C7CB8D3FCE48"},
        .shown = {.title = "Panels A", .summary = "Two interlocking tinted pieces with white lines."},
        .needsCopy = true,
        .apply = panels<layOutA>},
    {.id = 90,
        .entry = {.place = 84, .name = "Jigsaw_B", .guid = "89AD1E6D-CF9D-4280-BE45-9D4DF7874E18"},
        .shown = {.title = "Panels B", .summary = "Four tinted panels with black lines, offset like bricks."},
        .needsCopy = true,
        .apply = panels<layOutB>},
    {.id = 91,
        .entry = {.place = 85, .name = "Jigsaw_C", .guid = "269A3DB6-D705-43c3-BC2C-57D28FEB23B6"},
        .shown = {.title = "Panels C", .summary = "Four tinted quarters with black lines."},
        .needsCopy = true,
        .apply = panels<layOutC>},
    {.id = 92,
        .entry = {.place = 86, .name = "Jigsaw_D", .guid = "590333AC-70B7-43b4-B854-AA12815C8A55"},
        .shown = {.title = "Panels D", .summary = "Tinted panels around a framed window."},
        .needsCopy = true,
        .apply = panels<layOutD>},
    {.id = 93,
        .entry = {.place = 87, .name = "Jigsaw_E", .guid = "EADA816C-CC38-4964-AE9D-6030F9A1E705"},
        .shown = {.title = "Panels E", .summary = "Overlapping tinted panels with shaded edges."},
        .needsCopy = true,
        .apply = panels<layOutE>},
    {.id = 94,
        .entry = {.place = 88, .name = "Jigsaw_F", .guid = "AB623CB4-A037-4734-ABE3-E11528C2F878"},
        .shown = {.title = "Panels F", .summary = "Stepped tinted panels with shaded edges."},
        .needsCopy = true,
        .apply = panels<layOutF>},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

} // namespace KEXSDK::am
