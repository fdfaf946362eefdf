// Partial desaturation, selective colour correction and luma-keyed light.
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/loops/rowPasses.h"
#include "pixels/numbers.h"

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::ByteTable;
using pixels::ByteTables;
using pixels::clampByte;
namespace rows = pixels::rows;

// Mixes every colour with 48 percent of the pixel's grey.
constexpr Bgra simpleElegant(Bgra p)
{
    const int grey = y10(p) * 122;
    const auto mixed = [grey](int c) { return u8((grey + c * 134) >> 8); };
    return {mixed(p.b), mixed(p.g), mixed(p.r), p.a};
}

constexpr Bgra fresh(Bgra p)
{
    const auto lifted = [](int c, int k) { return u8((163 * c + 92 * (c < k ? k - c : c - k)) >> 8); };
    return {lifted(p.b, 135), lifted(p.g, 39), lifted(p.r, 17), p.a};
}

// The light's curves at half their height, as softened() takes them.
constexpr ByteTables kFreshLight = [] {
    const ByteTables curves =
        curvesThrough({2, 54, 129, 204, 255}, {51, 93, 153, 214, 255}, {153, 174, 204, 235, 255});
    const auto half = [](const ByteTable& curve) {
        return pixels::tableOf([&](int i) { return u8(curve[std::size_t(i)] >> 1); });
    };
    return ByteTables{half(curves.b), half(curves.g), half(curves.r)};
}();
constexpr ByteTable kFreshFinish = curveThrough({0, 145, 207, 238, 255});

// Soft light of half the light's value, in single precision.
constexpr u8 softened(int c, int light)
{
    const bool dark = c < 128;
    const float part = float(dark ? c : 2 * (191 - light) * (255 - c)) / 255.0f;
    return u8(int(dark ? float(2 * light + 128) * part : 255.0f - part));
}

i32 freshness(const Frame& f)
{
    rows::anyOrder(f.dst.extent(), [&](int y) {
        const SpareRow spare(f.dst.width());
        const pixels::View light = spare.view();
        const pixels::ConstView from = f.src.rows(y, y + 1);
        const pixels::View to = f.dst.rows(y, y + 1);
        rows::map(from, light, [](Bgra p) { return pixels::grey(p, u8(y8(fresh(p)))); });
        pixels::mapTables(light, light, kFreshLight);
        rows::map2(from, light, to, [](Bgra source, Bgra t) -> Bgra {
            const Bgra p = fresh(source);
            return {softened(p.b, t.b), softened(p.g, t.g), softened(p.r, t.r), p.a};
        });
        pixels::mapTables(to, to, {kFreshFinish, kFreshFinish, kFreshFinish});
    });
    return kAmOk;
}

// The largest, the middle and the smallest channel.
struct Order {
    int most;
    int middle;
    int least;

    constexpr Order(int r, int g, int b)
        : most(std::max(std::max(r, g), b)),
          middle(0),
          least(std::min(std::min(r, g), b))
    {
        middle = r + g + b - most - least;
    }
};

// Amounts that are added to the complements of red, green and blue.
struct Ink {
    int cyan;
    int magenta;
    int yellow;
};

// The whole part of a share of `product`, which is not below 0 and not above 2^16; the denominator of the
// share is not above 3200. Single precision errs by less than the 1.5e-4 that is added, and every share below
// a whole number is farther away from it than that.
constexpr int part(int product, float share) { return int(float(product) * share + 1.5e-4f); }

constexpr float choose(bool first, float a, float b) { return first ? a : b; }

// The part of a colour's hue that its strongest channel stands for.
constexpr Ink ofPrimaries(int r, int b, Order order, Ink ink)
{
    const int a = order.most - order.middle;
    const bool red = order.most == r;
    const bool blue = order.most == b;
    return {
        -part(a * ink.cyan, choose(red, 1.0f / 256, choose(blue, 3.0f / 1280, 1.0f / 320))),
        -part(a * ink.magenta, choose(red, 1.0f / 512, choose(blue, 1.0f / 1024, 1.0f / 2560))),
        -part(a * ink.yellow, choose(red, 1.0f / 1024, choose(blue, 1.0f / 1024, 1.0f / 256))),
    };
}

// The part of a colour's hue that its weakest channel stands for.
constexpr Ink ofSecondaries(int g, int b, Order order, Ink ink)
{
    const int e = order.middle - order.least;
    const bool yellow = order.least == b;
    const bool magenta = order.least == g;
    const float most = choose(magenta, 1.0f / 256, 0);
    const int c = part(e * ink.cyan, choose(yellow, 3.0f / 1024, most));
    const int m = part(e * ink.magenta, choose(yellow, 1.0f / 3200, most));
    const int y = part(e * ink.yellow, choose(yellow, 1.0f / 3200, most));
    return {-c, yellow ? m : -m, yellow ? y : -y};
}

constexpr u8 overlaid(int c, int tone)
{
    const int dark = tone * c >> 7;
    const int bright = 255 - ((255 - tone) * (255 - c) >> 7);
    return u8(c < 128 ? dark : bright);
}

constexpr Bgra beautiful(Bgra p)
{
    const int light = 255 - y8(p);
    const auto screened = [light](int c) { return 255 - ((255 - c) * light >> 8); };
    const int b = screened(p.b);
    const int g = screened(p.g);
    const int r = screened(p.r);

    const Order order(r, g, b);
    const auto fromMiddle = [](int c) { return c < 128 ? 128 - c : c - 128; };
    const int neutral = 255 - fromMiddle(order.least) - fromMiddle(order.most);
    const Ink ink{255 - r, 255 - g, 255 - b};
    const Ink primary = ofPrimaries(r, b, order, ink);
    const Ink secondary = ofSecondaries(g, b, order, ink);
    const auto corrected = [neutral](int x, int d, int e) {
        return 255 - clampByte(x - (neutral * x >> 10) + d + e);
    };
    const auto tone = [light](int k) { return 255 - (k * light >> 8); };
    return {
        overlaid(corrected(ink.yellow, primary.yellow, secondary.yellow), tone(200)),
        overlaid(corrected(ink.magenta, primary.magenta, secondary.magenta), tone(194)),
        overlaid(corrected(ink.cyan, primary.cyan, secondary.cyan), tone(160)),
        p.a,
    };
}

constexpr ByteTables kGloaming =
    curvesThrough({0, 92, 166, 215, 255}, {0, 74, 142, 201, 255}, {54, 102, 145, 184, 221});

constexpr Bgra gloaming(Bgra p)
{
    const int b = p.b;
    const int g = p.g;
    const int r = p.r;
    const Order order(r, g, b);
    const auto only = [](bool selected, int amount) { return selected ? amount : 0; };
    const int red = only(r == order.most, order.most - order.middle);
    const int yellow = only(b == order.least, order.middle - order.least);
    const int dark = only(order.most < 128, 255 - 2 * order.most);
    const int light = only(order.least > 128, 2 * order.least - 255);

    // A change by a share of the amount, which never takes more than that of the room that is left.
    const auto change = [](int amount, float share, int room) {
        return std::min(part(amount, share), amount * room >> 8);
    };
    const int newR = r + change(red, 0.38f, 255 - r) + change(yellow, 0.28f, 255 - r)
        + change(dark, 0.06f, 255 - r) - change(light, 0.02f, r);
    const int newG = g - change(red, 0.1f, g) - change(yellow, 0.05f, g) - change(dark, 0.07f, g)
        + change(light, 0.03f, 255 - g);
    const int newB = b + change(red, 0.2f, 255 - b) - change(yellow, 0.25f, b) + change(dark, 0.09f, 255 - b)
        + change(light, 0.03f, 255 - b);
    return {clampByte(newB), clampByte(newG), clampByte(newR), p.a};
}

i32 vintageGloaming(const Frame& f)
{
    mapThenTables(
        f, [](Bgra p) { return gloaming(p); }, kGloaming);
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 71,
        .entry = {.place = 68, .name = "SimpleElegent", .guid = "94C674C7-B853-4b72-A035-46412DA6B447"},
        .shown = {.title = "Simple Elegance", .summary = "Partly desaturated colours."},
        .needsCopy = true,
        .apply = byRows(eachPixel<simpleElegant>)},
    {.id = 75,
        .entry = {.place = 72, .name = "Freshness", .guid = "740E5BD0-1BAD-4688-AF49-946FAE0F2E7A"},
        .shown = {.title = "Freshness", .summary = "Light airy colours with lifted blue."},
        .needsCopy = true,
        .apply = freshness},
    {.id = 76,
        .entry = {.place = 73, .name = "BeautifyImg", .guid = "D3FFB279-0581-4c3c-8CAC-CB2E1D148614"},
        .shown = {.title = "Beautify", .summary = "Brightens and corrects skin colours."},
        .needsCopy = true,
        .apply = byRows(eachPixel<beautiful>)},
    {.id = 78,
        .entry = {.place = 75, .name = "Vintage_Gloaming", .guid = "08ECFF4C-CD36-4c89-9D4D-F515451BB2DB"},
        .shown = {.title = "Vintage Gloaming", .summary = "Evening colours with corrected reds."},
        .needsCopy = true,
        .apply = vintageGloaming},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

} // namespace KEXSDK::am
