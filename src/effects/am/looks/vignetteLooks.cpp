// Looks with a dark rim around a centre.
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/loops/rowPasses.h"
#include "pixels/columns.h"
#include "pixels/numbers.h"

#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::ByteTables;
namespace rows = pixels::rows;

constexpr ByteTables kAegean = [] {
    const ByteTables curves =
        curvesThrough({0, 30, 155, 236, 255}, {0, 63, 144, 214, 255}, {53, 82, 126, 169, 199});
    // A tenth of yellow is screened over the curves.
    const auto screened = [](const pixels::ByteTable& curve, int light) {
        return pixels::tableOf(
            [&](int i) { return u8(255 - ((255 - curve[std::size_t(i)]) * (255 - light) >> 8)); });
    };
    return ByteTables{screened(curves.b, 0), screened(curves.g, 26), screened(curves.r, 26)};
}();

void fixRadius(AmEffectParams& b) { b.radius = 65; }

void measureDistances(float* distances, pixels::Extent size, float cx, float cy)
{
    rows::anyOrderRuns(size, [&](int top, int end) {
        pixels::widest([=, width = size.width] {
            for (int y = top; y < end; ++y) {
                float* const row = distances + std::ptrdiff_t(y) * width;
                const float dy = float(y) - cy;
                for (int x = 0; x < width; ++x) {
                    const float dx = float(x) - cx;
                    row[x] = std::sqrt(dx * dx + dy * dy);
                }
            }
        });
    });
}

// How a pixel's distance from the centre darkens or brightens it. Single precision and the order of the
// operations decide the bytes.
struct AegeanLight {
    float rim;     ///< where the picture starts to darken
    float farther; ///< from there to the picture's first pixel

    AegeanLight(float reference, int radius)
    {
        const float share = float(radius) / 100.0f;
        rim = reference * share;
        farther = (1.0f - share) * reference;
    }

    // The comparisons turn NaN into black outside the rim and into full brightness inside.
    Bgra operator()(Bgra p, float distance) const
    {
        const bool outside = distance >= rim;
        const float way = (outside ? distance - rim : distance) / (outside ? farther : rim);
        const float fading = 1.0f - way * 0.6f;
        const float factor = fading > 0.0f ? fading : 0.0f;
        const float glow = (1.0f - way) * 0.1f * 255.0f;
        const auto lit = [=](int c) {
            const float dark = float(c) * factor + 0.5f;
            const float bright = float(c) + glow + 0.5f;
            return u8(int(outside ? dark : bright < 255.0f ? bright : 255.0f));
        };
        return {lit(p.b), lit(p.g), lit(p.r), p.a};
    }
};

i32 aegean(const Frame& f)
{
    const int width = f.dst.width();
    const int height = f.dst.height();
    if (!ensureScratchC(f.block, i64(4) * width * height, kAmDirtySize))
        return kAmNoMemory;
    float* const distances = static_cast<float*>(f.block.scratchC);
    const float cx = float(std::clamp(f.block.posX, 0, 100)) * float(width) / 100.0f;
    const float cy = float(std::clamp(f.block.posY, 0, 100)) * float(height) / 100.0f;
    if (takeDirty(f.block, kAmDirtyTable | kAmDirtySize))
        measureDistances(distances, f.dst.extent(), cx, cy);

    const AegeanLight light(std::sqrt(cx * cx + cy * cy), f.block.radius);
    rows::anyOrder(f.dst.extent(), [&](int y) {
        const pixels::View to = f.dst.rows(y, y + 1);
        pixels::widest([=, from = f.src.row(y).data(), row = to.row(0).data(),
                           distance = distances + std::ptrdiff_t(y) * width] {
            pixels::mapColumns(from, row, 0, width, [=](int x, Bgra p) { return light(p, distance[x]); });
        });
        pixels::mapTables(to, to, kAegean);
    });
    return kAmOk;
}

// A circle, black outside and darkening towards it from within.
class Rim {
public:
    Rim(const AmEffectParams& b, pixels::Extent size) : x_(size.width / 2), y_(size.height / 2)
    {
        // Beyond this the circle lies outside of every picture.
        constexpr int kMostPercent = 10000;
        const double share = std::min(b.percent, kMostPercent) / 100.0;
        const int m = std::max(size.width, size.height) / 2;
        outer_ = std::max(0, pixels::truncated(m * (1.1 * share + 0.1)));
        inner_ = pixels::truncated(m * std::max(share - 0.3, 0.0));
    }

    void drawRow(const Bgra* from, Bgra* to, int width, int row) const
    {
        const int dy2 = (row - y_) * (row - y_);
        const Span faded = reach(outer_, dy2, width);
        const Span clear = reach(inner_, dy2, width);
        std::fill(to, to + faded.first, kBlack);
        fade(from, to, {faded.first, clear.first}, dy2);
        if (from != to)
            std::copy(from + clear.first, from + clear.end, to + clear.first);
        fade(from, to, {clear.end, faded.end}, dy2);
        std::fill(to + faded.end, to + width, kBlack);
    }

private:
    static constexpr Bgra kBlack{0, 0, 0, 255};
    struct Span {
        int first;
        int end;
    };

    // The columns of a row within a radius. An empty span lies where the others meet.
    Span reach(double radius, int dy2, int width) const
    {
        const double left = radius * radius - dy2;
        if (left < 0)
            return {x_, x_};
        const int half = int(std::min(std::sqrt(left), 2.0 * kMaxExtent));
        return {std::max(0, x_ - half), std::min(width, x_ + half + 1)};
    }

    void fade(const Bgra* from, Bgra* to, Span span, int dy2) const
    {
        pixels::mapColumns(from, to, span.first, span.end, [rim = *this, dy2](int column, Bgra p) -> Bgra {
            const int dx = column - rim.x_;
            const double distance = std::sqrt(double(dx * dx + dy2));
            const double factor = (rim.outer_ - distance) / (rim.outer_ - rim.inner_);
            const auto darkened = [factor](int c) { return u8(int(c * factor)); };
            return {darkened(p.b), darkened(p.g), darkened(p.r), p.a};
        });
    }

    int x_;
    int y_;
    double outer_;
    double inner_;
};

i32 vignetteRadius(const Frame& f)
{
    const Rim rim(f.block, f.dst.extent());
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            for (int y = top; y < end; ++y)
                rim.drawRow(src.row(y).data(), dst.row(y).data(), dst.width(), y);
        });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 82,
        .entry = {.place = 79, .name = "Aegean", .guid = "154FD34E-0DF8-481f-A99C-4913DDC4938A"},
        .shown = {.title = "Aegean", .summary = "Dark rim, light centre and sea colours."},
        .reads = {.position = true},
        .prepare = fixRadius,
        .needsCopy = true,
        .apply = aegean},
    {.id = 95,
        .entry = {.place = 89, .name = "VignetteRadius", .guid = "B708C1BB-39A4-410b-A622-8FBC323FD2D7"},
        .shown = {.title = "Black Vignette", .summary = "A black rim around a circle."},
        .reads = {.radius = {"Clear Circle Size", "size of the clear circle"}},
        .radiusIsPercent = true,
        .alpha = Alpha::computed,
        .apply = vignetteRadius},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

} // namespace KEXSDK::am
