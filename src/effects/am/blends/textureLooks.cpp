// Looks that are made of a picture's greys, curves or brightened colours, and of a texture.
#include "effects/am/blends/blendKernels.h"
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"

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

// The block's colour, as it was in the last run that found the table's mark.
struct ScreenColour {
    u8 b;
    u8 g;
    u8 r;
    explicit ScreenColour(const AmEffectParams& block) : b(block.blue), g(block.green), r(block.red) { }
};

// Screens the picture, reduced to 64 levels a channel, with a colour, and blends the outcome with the
// texture.
template <auto kBlend> i32 screenedWithColour(const Frame& f)
{
    const ScreenColour* const found = cached<ScreenColour>(f.block, kAmDirtyTable, kAmDirtyTable);
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

// Calls steps(src, second, dst) with matching rows of the three pictures, for each run of rows that one task
// handles: the second step of a look then finds the first one's rows in the cache.
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

// An overlay that is truncated, where the library's overlay mode rounds.
constexpr int tuneOverlay(int a, int b)
{
    return a < 128 ? (b * a) >> 7 : 255 - (((255 - b) * (255 - a)) >> 7);
}

/// kOpacity / 256 of the way from a to kBlend(a, b).
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

// The second picture is a mask of any size whose middle lies on the focus; it is read upside down. Outside it
// everything is grey.
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

constexpr EffectRow kRows[] = {
    {.id = 2063,
        .entry = {.place = 124, .name = "OldTV", .guid = "C10ECCE1-538A-4754-9E3B-561D2A147709"},
        .shown = {.title = "Old Television", .summary = "Grey picture multiplied with a screen texture."},
        .texture = "OldTV.png",
        .apply = byRows(eachPair<greyWithTexture<y4, multiplied>>)},
    {.id = 2064, .defaults = {.red = 225, .green = 55, .blue = 36}, .apply = screenedWithColour<multiplied>},
    {.id = 2065,
        .entry = {.place = 125, .name = "StencilPoster", .guid = "104E99A6-F91B-46ae-B90B-A61394982ADC"},
        .shown = {.title = "Stencil Poster",
            .summary = "Brightens towards the first frame's colour and multiplies with a stencil."},
        .texture = "StencilPosterRed.png",
        .reads = {.colour = true},
        .defaults = {.red = 50, .green = 235, .blue = 70},
        .apply = screenedWithColour<multiplied>},
    {.id = 2066, .defaults = {.red = 40, .green = 70, .blue = 235}, .apply = screenedWithColour<multiplied>},
    {.id = 2067, .defaults = {.variant = 3}, .apply = byRows(twoTones)},
    {.id = 2068, .defaults = {.variant = 2}, .apply = byRows(twoTones)},
    {.id = 2069, .defaults = {.variant = 1}, .apply = byRows(twoTones)},
    {.id = 2070, .apply = byRows(twoTones)},
    {.id = 2186,
        .entry = {.place = 149, .name = "BurntPaper", .guid = "FD25B45B-3871-4290-B3B9-1704BB08B2DE"},
        .shown = {.title = "Burnt Paper", .summary = "The grey picture on burnt paper."},
        .texture = "burntpaper.png",
        .apply = greyLinearBurn},
    {.id = 2187, .defaults = {.red = 245, .green = 40, .blue = 70}, .apply = screenedWithColour<burnt>},
    {.id = 2188,
        .entry = {.place = 148, .name = "LinearBurn", .guid = "0F67BDD5-F850-4c8f-88D1-60B581451CC7"},
        .shown = {.title = "Coloured Burn",
            .summary = "Brightens towards the first frame's colour and burns with a texture."},
        .texture = "LinearBurn.png",
        .reads = {.colour = true},
        .defaults = {.red = 205, .green = 155, .blue = 36},
        .apply = screenedWithColour<burnt>},
    {.id = 2189, .defaults = {.red = 40, .green = 81, .blue = 143}, .apply = screenedWithColour<burnt>},
    {.id = 2193,
        .entry = {.place = 133, .name = "SunSet", .guid = "6DE84CB8-C186-4419-8E88-6EE3B2967660"},
        .shown = {.title = "Sunset", .summary = "Evening colours with a tinted circle."},
        .texture = "ColorTuneCircle00.png",
        .needsCopy = true,
        .second = Second::any,
        .apply = byRows(colourTune<kSunSet, partly<multiplied, 154>>)},
    {.id = 2194,
        .entry = {.place = 134, .name = "Vivid", .guid = "9E2DC6CF-BDC2-4368-99DD-DBB8A42A8298"},
        .shown = {.title = "Vivid", .summary = "Strong colours with a tinted circle."},
        .texture = "ColorTuneCircle00.png",
        .needsCopy = true,
        .second = Second::any,
        .apply = byRows(colourTune<kVivid, partly<tuneOverlay, 128>>)},
    {.id = 2195,
        .entry = {.place = 135, .name = "Garden", .guid = "6C614395-EEA7-4d86-B3B5-2C475429B4B5"},
        .shown = {.title = "Garden", .summary = "Green colours with a tinted circle."},
        .texture = "ColorTuneCircle01.png",
        .needsCopy = true,
        .second = Second::any,
        .apply = byRows(colourTune<kGarden, partly<tuneOverlay, 128>>)},
    {.id = 2196,
        .entry = {.place = 136, .name = "DanGui", .guid = "81D46CE2-7D13-4a85-9EE1-DFEE0C44FE3D"},
        .shown = {.title = "Dan Gui", .summary = "Soft golden colours with a tinted circle."},
        .texture = "ColorTuneCircle01.png",
        .needsCopy = true,
        .second = Second::any,
        .apply = byRows(colourTune<kDanGui, tuneOverlay>)},
    {.id = 2197,
        .entry = {.place = 137, .name = "September", .guid = "637B6036-9E00-4f91-ACEA-AA1ABF1E82C5"},
        .shown = {.title = "September", .summary = "Autumn colours with a tinted circle."},
        .texture = "ColorTuneCircle01.png",
        .needsCopy = true,
        .second = Second::any,
        .apply = byRows(colourTune<kSunSet, tuneOverlay>)},
    {.id = 2198,
        .entry = {.place = 138, .name = "Lumbra_Lomo", .guid = "2C052C3B-F0BD-4d5c-A8C0-5C86389DD7CB"},
        .shown = {.title = "Lumbra Lomo", .summary = "Dark rim and hard contrast."},
        .texture = "dark.png",
        .apply = byRows(lumbraLomo)},
    {.id = 2199,
        .entry = {.place = 139, .name = "Charcoal", .guid = "F24A2C3E-214F-4f9f-ADD9-C8221CC5B637"},
        .shown = {.title = "Charcoal", .summary = "The grey picture over charcoal strokes."},
        .texture = "sketch_black.png",
        .apply = byRows(eachPair<greyWithTexture<y8, added>>)},
    {.id = 2200,
        .entry = {.place = 140, .name = "ColorFense", .guid = "84966D50-730C-4f9b-B10F-B4C94112B77E"},
        .shown = {.title = "Colour Fence", .summary = "Brightened colours behind charcoal strokes."},
        .texture = "sketch_black.png",
        .needsCopy = true,
        .apply = byRows(eachPair<blended<brightenedScreen>>)},
    {.id = 2201,
        .entry = {.place = 141, .name = "FocusColor", .guid = "DA82B39B-F380-46c6-9445-3E096905D4E3"},
        .shown = {.title = "Focus Colour", .summary = "Colour inside a mask, grey around it."},
        .texture = "pc_focusColor.png",
        .reads = {.position = true},
        .needsCopy = true,
        .second = Second::any,
        .apply = focusColour},
    {.id = 2202,
        .entry = {.place = 142, .name = "Radio Explike FX", .guid = "2FFCED76-6277-41a5-B1AD-4BB27C8D44D3"},
        .shown = {.title = "Radial Light", .summary = "Overlays a radial texture."},
        .texture = "radial3.png",
        .needsCopy = true,
        .apply = asTable<overlaid>},
};
static_assert(isSound(kRows));

const Registered registered{Family::texture, kRows};

} // namespace

} // namespace KEXSDK::am
