// A relief, a spot of light, and one colour kept among greys.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "pixels/columns.h"
#include "pixels/numbers.h"

#include <array>
#include <bit>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::clampByte;
using pixels::grey;
namespace rows = pixels::rows;

i32 emboss(const Frame& f)
{
    const int reach = 1 + percentOf(f.block) / 10;
    const int width = f.dst.width();
    const int flat = std::max(0, width - reach);
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            const auto sum = [](Bgra p) { return p.b + 2 * p.g + p.r; };
            for (int y = top; y < end; ++y) {
                const Bgra* const from = src.row(y).data();
                Bgra* const to = dst.row(y).data();
                // In place, too: what a pixel reads to its right has not been written yet.
                pixels::mapColumns(from, to, 0, flat, [ahead = from + reach, sum](int x, Bgra p) {
                    const int slope = sum(p) - sum(pixels::load(ahead + x));
                    return grey(p, clampByte(128 + (slope >> 2)));
                });
                for (int x = flat; x < width; ++x)
                    to[x] = grey(from[x], 128);
            }
        });
    });
    return kAmOk;
}

// Light falls off with the square of the distance and ends at the radius.
struct Spot {
    int x;
    int y;
    int radius;
    u32 amplitude;
    u32 shift;

    Spot(const AmEffectParams& b, pixels::Extent size)
    {
        const int shorter = std::min(size.width, size.height);
        x = std::clamp(b.posX, 0, 100) * size.width / 100;
        y = std::clamp(b.posY, 0, 100) * size.height / 100;
        radius = std::clamp(b.radius, 0, 100) * shorter / 200;
        amplitude = u32((256 - radius * 256 / shorter) * percentOf(b) / 100);
        const u32 square = u32(radius) * u32(radius);
        shift = square < 2 ? 1 : std::max(2u, u32(std::bit_width(square)));
    }
};

void light(pixels::View dst, int top, int end, Spot spot)
{
    const int firstX = std::max(0, spot.x - spot.radius);
    const int endX = std::min(dst.width(), spot.x + spot.radius);
    pixels::widest([=] {
        const u32 square = u32(spot.radius * spot.radius);
        for (int y = std::max(top, spot.y - spot.radius); y < std::min(end, spot.y + spot.radius); ++y) {
            const u32 dy2 = u32((y - spot.y) * (y - spot.y));
            Bgra* const row = dst.row(y).data();
            pixels::mapColumns(row, row, firstX, endX, [spot, square, dy2](int x, Bgra p) -> Bgra {
                const u32 d2 = u32((x - spot.x) * (x - spot.x)) + dy2;
                const int add = d2 < square ? int((square - d2) * spot.amplitude >> spot.shift) : 0;
                return {clampByte(p.b + add), clampByte(p.g + add), clampByte(p.r + add), p.a};
            });
        }
    });
}

i32 sunShine(const Frame& f)
{
    const Spot spot(f.block, f.dst.extent());
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        copyRows(f, top, end);
        light(f.dst, top, end, spot);
    });
    return kAmOk;
}

constexpr int kAchromatic = 512;

// 43 / d in 20-bit fixed point: a sixth of the colour circle has 43 hues.
constexpr auto kReciprocals = [] {
    std::array<i32, 256> table{};
    for (int d = 1; d < 256; ++d)
        table[std::size_t(d)] = 45088768 / d;
    return table;
}();

// The hue of a pixel: 0..255 around the colour circle, or kAchromatic.
inline int hueOf(Bgra p)
{
    const int b = p.b;
    const int g = p.g;
    const int r = p.r;
    const int most = std::max(std::max(r, g), b);
    const int spread = most - std::min(std::min(r, g), b);
    const int reciprocal = kReciprocals[std::size_t(spread)];
    const int nearRed = g >= b ? (g - b) * reciprocal >> 20 : 255 - ((b - g) * reciprocal >> 20);
    const int nearGreen = ((b - r) * reciprocal >> 20) + 85;
    const int nearBlue = ((r - g) * reciprocal >> 20) + 171;
    const int hue = most == r ? nearRed : most == g ? nearGreen : nearBlue;
    return spread < 21 ? kAchromatic : hue;
}

// Hues from first, around the circle, to last.
struct HueRange {
    int first;
    int last;
};

constexpr int kBuckets = 9;
constexpr int kGreys = 8;
constexpr int kBucketEnds[kBuckets] = {8, 29, 50, 111, 146, 196, 235, 256, 1024};
// Reds lie at both ends of the circle: the first bucket stands for the last one, too.
constexpr HueRange kKept[] = {{235, 11}, {11, 36}, {14, 53}, {50, 110}, {110, 146}, {146, 192}, {192, 235}};

std::array<int, kBuckets> countHues(pixels::ConstView src, int left, int right, int bottom, int top)
{
    std::array<int, kBuckets> count{};
    for (int y = std::max(0, bottom); y < std::min(top, src.height()); ++y) {
        const auto row = src.row(y);
        for (int x = std::max(0, left); x < std::min(right, src.width()); ++x) {
            const int hue = hueOf(row[std::size_t(x)]);
            ++count[std::size_t(std::ranges::upper_bound(kBucketEnds, hue) - std::begin(kBucketEnds))];
        }
    }
    return count;
}

i32 getColor(const Frame& f)
{
    const auto place = [](float percent, int extent) {
        return pixels::truncated(extent * pixels::clamped(double(percent), 0.0, 100.0) / 100);
    };
    const int width = f.dst.width();
    const int height = f.dst.height();
    const int x = place(f.block.pickX, width);
    const int y = place(f.block.pickY, height);
    const int half = (std::min(width, height) >> 2) * std::clamp(f.block.radius, 0, 100) / 150;
    auto count = countHues(f.src, x - half, x + half, y - half, y + half);

    count[0] += count[7];
    const auto most = std::max_element(count.begin(), count.begin() + std::ssize(kKept));
    if (count[kGreys] >= *most) {
        rows::map(f.src, f.dst, [](Bgra p) { return grey(p, u8(y10(p))); });
        return kAmOk;
    }
    const HueRange kept = kKept[most - count.begin()];
    const int span = (kept.last - kept.first) & 0xFF;
    rows::map(f.src, f.dst, [first = kept.first, span](Bgra p) {
        const int hue = hueOf(p);
        const bool keep = hue == kAchromatic || ((hue - first) & 0xFF) <= span;
        return keep ? p : grey(p, u8(y10(p)));
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 6,
        .entry = {.place = 6, .name = "Emboss", .guid = "83BECB59-BA1F-4a4d-9CE1-B918E7F026B0"},
        .shown = {.title = "Grey Emboss", .summary = "A grey relief, lit from the side."},
        .reads = {.percent = {"Edge Width", "width of the relief's edges"}},
        .apply = byRows(emboss)},
    {.id = 24,
        .entry = {.place = 24, .name = "SunShine", .guid = "E05DAB18-F084-445b-BEA6-9EE4D7E5249B"},
        .shown = {.title = "Sunshine", .summary = "A round light that fades towards its rim."},
        .reads = {.percent = {"Brightness", "brightness of the light"},
            .radius = {"Light Size", "size of the light, 100 fills the picture's height"},
            .position = true},
        .defaults = {.usageMask = 7},
        .apply = sunShine},
    {.id = 63,
        .entry = {.place = 62, .name = "GetColor", .guid = "309BBE5F-12C8-4ded-9689-A69896691A87"},
        .shown = {.title = "Keep One Colour",
            .summary = "Keeps the main colour around a point and makes the rest grey."},
        .reads = {.radius = {"Window Size", "size of the window whose colour is kept"}, .pick = true},
        .defaults = {.radius = 30, .usageMask = 67},
        .apply = getColor},
};
static_assert(isSound(kRows));

const Registered registered{Family::filter, kRows};

} // namespace

} // namespace KEXSDK::am
