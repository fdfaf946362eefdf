// Looks that are made of a picture's greys, curves or brightened colours, and of a texture.
#include "effects/am/blends/blendKernels.h"
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFilters.h"

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::ByteTables;

/// kBlend(luma, texture) in every channel.
template <auto kLuma, auto kBlend> constexpr Bgra greyWithTexture(Bgra p, Bgra texture)
{
    const u8 luma = u8(kLuma(p));
    return blended<kBlend>({luma, luma, luma, p.a}, texture);
}

// What a linear burn leaves over, times 1.3 in 16 fractional bits.
constexpr int brightenedBurn(int a, int b)
{
    constexpr int kGain = 85196;
    return std::min((burnt(a, b) * kGain) >> 16, 255);
}

i32 greyLinearBurn(const Frame& f)
{
    takeDirty(f.block, kAmDirtyTable);
    return eachPair<greyWithTexture<y4, brightenedBurn>>(f);
}

constexpr int brightenedScreen(int a, int b)
{
    const int bright = std::min(a * 256 / 182, 255);
    return 255 - (((255 - b) * (255 - bright)) >> 8);
}

// The colour of the run that found the table's mark.
struct ScreenColour {
    u8 b;
    u8 g;
    u8 r;
    explicit ScreenColour(const AmEffectParams& block) : b(block.blue), g(block.green), r(block.red) { }
};

// Screens the picture, in 64 steps a channel, with a colour.
template <auto kBlend> i32 screenedWithColour(const Frame& f)
{
    const ScreenColour* const found = kept<ScreenColour>(f.block, kAmDirtyTable, kAmDirtyTable);
    if (!found)
        return kAmNoMemory;
    const ScreenColour colour = *found;
    pixels::rows::map2(f.src, f.second, f.dst, [=](Bgra p, Bgra texture) {
        const auto stepped = [](int a, int of) { return u8(screened(a & ~3, of)); };
        const Bgra coloured{stepped(p.b, colour.b), stepped(p.g, colour.g), stepped(p.r, colour.r), p.a};
        return blended<kBlend>(coloured, texture);
    });
    return kAmOk;
}

// Bright pixels take the texture's colours, dark ones one channel of them, or none.
i32 twoTones(const Frame& f)
{
    constexpr u32 kColours = 0x00FFFFFF;
    constexpr int kNone = 3;
    const int channel = f.block.variant & 3;
    const u32 always = channel == kNone ? 0 : 0xFFu << 8 * channel;
    pixels::rows::map2(f.src, f.second, f.dst, [=](Bgra p, Bgra texture) {
        const u32 mask = p.r + p.g + p.b + 2 < 384 ? always : kColours;
        return pixels::fromWord((pixels::toWord(texture) & mask) | (pixels::toWord(p) & ~kColours));
    });
    return kAmOk;
}

// Runs of rows that one task handles, each with its rows of all three pictures: for looks of two steps,
// whose second step then finds the rows of the first one in the cache.
template <class Steps> void strips(const Frame& f, Steps steps)
{
    pixels::rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        const pixels::Extent size{f.dst.width(), end - top};
        steps(f.src.part(0, top, size), f.second.part(0, top, size), f.dst.part(0, top, size));
    });
}

constexpr ByteTables kSunSet =
    curvesThrough({18, 103, 188, 228, 254}, {0, 63, 158, 210, 248}, {12, 83, 146, 203, 245});
constexpr ByteTables kVivid =
    curvesThrough({35, 97, 193, 230, 254}, {1, 44, 171, 226, 254}, {0, 28, 129, 208, 234});
constexpr ByteTables kGarden =
    curvesThrough({82, 95, 164, 225, 225}, {58, 59, 127, 194, 240}, {65, 66, 141, 212, 213});
constexpr ByteTables kDanGui =
    curvesThrough({38, 107, 171, 218, 241}, {22, 107, 185, 225, 254}, {0, 85, 162, 215, 244});
constexpr ByteTables kLumbraLomo =
    curvesThrough({0, 41, 161, 237, 255}, {0, 18, 151, 227, 255}, {0, 53, 206, 249, 255});

// Not rounded, unlike the mode of the library.
constexpr int tuneOverlay(int a, int b)
{
    return a < 128 ? (b * a) >> 7 : 255 - (((255 - b) * (255 - a)) >> 7);
}

/// `opacity` / 256 of the way from a to kBlend(a, b).
template <auto kBlend, int kOpacity> constexpr int partly(int a, int b)
{
    return a + ((kBlend(a, b) - a) * kOpacity >> 8);
}

template <const ByteTables& kCurves, auto kBlend> i32 colourTune(const Frame& f)
{
    if (f.second.extent() != f.dst.extent()) {
        pixels::mapTables(f.src, f.dst, kCurves);
        return kAmOk;
    }
    strips(f, [](pixels::ConstView src, pixels::ConstView second, pixels::View dst) {
        pixels::mapTables(src, dst, kCurves);
        blendRows<blended<kBlend>>(dst, second, dst);
    });
    return kAmOk;
}

i32 lumbraLomo(const Frame& f)
{
    strips(f, [](pixels::ConstView src, pixels::ConstView second, pixels::View dst) {
        blendRows<blended<multiplied>>(src, second, dst);
        pixels::mapTables(dst, dst, kLumbraLomo);
    });
    return kAmOk;
}

// A span of columns or rows, half open.
struct Span {
    int first;
    int end;
    int length() const { return end - first; }
};

// The pixels at most `reach` from the middle, as far as they lie within the extent.
Span around(i64 middle, int reach, int extent)
{
    const int first = int(std::clamp<i64>(middle - reach, 0, extent));
    const int end = int(std::clamp<i64>(middle + reach + 1, first, extent));
    return {first, end};
}

constexpr Bgra greyOf(Bgra p) { return pixels::grey(p, u8(y10(p))); }

// The second picture is a mask, as large as it likes, whose middle lies on the focus; it is read the other
// way up. Outside it everything is grey.
i32 focusColour(const Frame& f)
{
    const int w = f.dst.width();
    const int h = f.dst.height();
    const i64 focusX = i64(f.block.posX) * w / 100;
    const i64 focusY = i64(f.block.posY) * h / 100;
    const int maskX = f.second.width() / 2 - 1;
    const int maskY = f.second.height() / 2 - 1;
    const Span columns = around(focusX, maskX, w);
    const Span rows = around(focusY, maskY, h);

    const auto makeGrey = [&](Span across, Span along) {
        const pixels::Extent size{across.length(), along.length()};
        pixels::rows::map(f.src.part(across.first, along.first, size),
            f.dst.part(across.first, along.first, size), [](Bgra p) { return greyOf(p); });
    };
    makeGrey({0, w}, {0, rows.first});
    makeGrey({0, w}, {rows.end, h});
    makeGrey({0, columns.first}, rows);
    makeGrey({columns.end, w}, rows);

    const pixels::Extent size{columns.length(), rows.length()};
    if (size.width == 0 || size.height == 0)
        return kAmOk;
    const int maskColumn = int(maskX + columns.first - focusX);
    const int maskRow = int(maskY + focusY - rows.first);
    const pixels::ConstView mask(
        reinterpret_cast<const u8*>(&f.second.at(maskColumn, maskRow)), size, -f.second.strideBytes());
    pixels::rows::map2(f.src.part(columns.first, rows.first, size), mask,
        f.dst.part(columns.first, rows.first, size), [](Bgra p, Bgra texture) {
            const int share = texture.b;
            const int rest = y10(p) * (256 - share);
            const auto mixed = [&](int c) { return u8((c * share + rest) >> 8); };
            return Bgra{mixed(p.b), mixed(p.g), mixed(p.r), p.a};
        });
    return kAmOk;
}

constexpr EffectRow withCopy(i32 id, Effect run, Second second = Second::alike)
{
    return {id, run, nullptr, Source::kept, second};
}

constexpr EffectRow direct(i32 id, Effect run) { return {id, run, nullptr, Source::any, Second::alike}; }

constexpr EffectRow kRows[] = {
    direct(2063, eachPair<greyWithTexture<y4, multiplied>>),
    direct(2064, screenedWithColour<multiplied>),
    direct(2065, screenedWithColour<multiplied>),
    direct(2066, screenedWithColour<multiplied>),
    direct(2067, twoTones),
    direct(2068, twoTones),
    direct(2069, twoTones),
    direct(2070, twoTones),
    direct(2186, greyLinearBurn),
    direct(2187, screenedWithColour<burnt>),
    direct(2188, screenedWithColour<burnt>),
    direct(2189, screenedWithColour<burnt>),
    withCopy(2193, colourTune<kSunSet, partly<multiplied, 154>>, Second::any),
    withCopy(2194, colourTune<kVivid, partly<tuneOverlay, 128>>, Second::any),
    withCopy(2195, colourTune<kGarden, partly<tuneOverlay, 128>>, Second::any),
    withCopy(2196, colourTune<kDanGui, tuneOverlay>, Second::any),
    withCopy(2197, colourTune<kSunSet, tuneOverlay>, Second::any),
    direct(2198, lumbraLomo),
    direct(2199, eachPair<greyWithTexture<y8, added>>),
    withCopy(2200, eachPair<blended<brightenedScreen>>),
    withCopy(2201, focusColour, Second::any),
    withCopy(2202, asTable<overlaid>),
};
static_assert(idsAscend(kRows));

} // namespace

std::span<const EffectRow> textureLooks() { return kRows; }

} // namespace KEXSDK::am
