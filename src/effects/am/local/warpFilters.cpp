// Tunnel, lens, pinch and whirl: where every pixel comes from is computed once, and kept.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "pixels/numbers.h"
#include "pixels/sample.h"

#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Extent;
using pixels::Point;
using pixels::truncated;
namespace rows = pixels::rows;

// A position relative to a block's centre.
struct Ray {
    int x;
    int y;

    int square() const { return x * x + y * y; }
    double length() const { return std::sqrt(double(square())); }
};

struct Centre : Point {
    Centre(const AmEffectParams& b, Extent size)
        : Point{std::clamp(b.posX, 0, 100) * size.width / 100, std::clamp(b.posY, 0, 100) * size.height / 100}
    {
    }
    Ray to(int px, int py) const { return {px - x, py - y}; }
    Point from(Ray ray) const { return {x + ray.x, y + ray.y}; }
};

int farthestCorner(Point centre, Extent size)
{
    const Ray corner{std::max(centre.x, size.width - centre.x), std::max(centre.y, size.height - centre.y)};
    return int(corner.length());
}

// The warps: each call answers the place, relative to the centre, from where the pixel at `ray` comes.

// A pixel outside the circle shows the circle's rim in its direction.
struct Tunnel {
    static constexpr u32 kRebuild = kAmDirtyMap | kAmDirtyMap2 | kAmDirtySize;
    int radius;

    Tunnel(const AmEffectParams& b, Extent size, Point)
        : radius(std::min(size.width, size.height) * std::clamp(b.radius, 2, 100) / 200)
    {
    }
    Ray operator()(Ray ray) const
    {
        if (ray.square() <= radius * radius)
            return ray;
        const int distance = int(ray.length());
        return {radius * ray.x / distance, radius * ray.y / distance};
    }
};

constexpr u32 kRebuildLens = kAmDirtyTable2 | kAmDirtyMap | kAmDirtyMap2 | kAmDirtySize;

struct Enlarge {
    static constexpr u32 kRebuild = kRebuildLens;
    int flatness;
    int farthest;

    Enlarge(const AmEffectParams& b, Extent size, Point centre)
    {
        const int corner = farthestCorner(centre, size);
        flatness = (100 - percentOf(b)) * corner / 100;
        farthest = corner + flatness;
    }
    Ray operator()(Ray ray) const
    {
        const int scale = int(ray.length()) + flatness;
        return {ray.x * scale / farthest, ray.y * scale / farthest};
    }
};

struct Narrow {
    static constexpr u32 kRebuild = kRebuildLens;
    double exponent;
    double farthest;

    Narrow(const AmEffectParams& b, Extent size, Point centre)
        : exponent(1 / (std::clamp(b.percent, 1, 100) / 100.0 + 1)),
          farthest(farthestCorner(centre, size))
    {
    }
    Ray operator()(Ray ray) const
    {
        if (ray.square() <= 1)
            return ray;
        const double distance = ray.length() / farthest;
        const double scale = std::pow(distance, exponent) * exponent / distance;
        return {truncated(ray.x * scale), truncated(ray.y * scale)};
    }
};

struct Whirl {
    static constexpr u32 kRebuild = kRebuildLens;
    double most; ///< radians, at the centre
    double farthest;

    Whirl(const AmEffectParams& b, Extent size, Point centre)
        : most(std::clamp(b.percent, 1, 100) * 0.031415926),
          farthest(farthestCorner(centre, size))
    {
    }
    Ray operator()(Ray ray) const
    {
        const double nearness = 1 - ray.length() / farthest;
        const double angle = nearness * nearness * most;
        const double sine = std::sin(angle);
        const double cosine = std::cos(angle);
        return {truncated(ray.x * cosine - ray.y * sine), truncated(ray.y * cosine + ray.x * sine)};
    }
};

template <class Warp> void buildMap(const AmEffectParams& block, Extent size, u32* map)
{
    const Centre centre(block, size);
    rows::anyOrder(size, [&, warp = Warp(block, size, centre)](int y) {
        u32* const row = map + std::ptrdiff_t(y) * size.width;
        for (int x = 0; x < size.width; ++x) {
            const Point source = centre.from(warp(centre.to(x, y)));
            row[x] = pixels::packedPlace(
                {std::clamp(source.x, 0, size.width - 1), std::clamp(source.y, 0, size.height - 1)});
        }
    });
}

// A bent row crosses many rows of the source: pieces of several rows share them while they are in the cache,
// and what the processor cannot foresee is prefetched some rows ahead.
constexpr int kStrip = 128;
constexpr int kBand = 64;
constexpr int kRowsAhead = 8;

void prefetch(pixels::ConstView src, const u32* entries, int first, int end)
{
    constexpr int kStep = 8; // half a cache line of pixels
    for (int x = first; x < end; x += kStep)
        __builtin_prefetch(src.bytes() + std::ptrdiff_t(entries[x] >> 16) * src.strideBytes()
            + std::ptrdiff_t(entries[x] & 0xFFFF) * 4);
}

template <class Warp> i32 warp(const Frame& f)
{
    const Extent size = f.dst.extent();
    if (!ensureScratchC(f.block, i64(sizeof(u32)) * size.width * size.height, Warp::kRebuild))
        return kAmNoMemory;
    u32* const map = static_cast<u32*>(f.block.scratchC);
    if (takeDirty(f.block, Warp::kRebuild))
        buildMap<Warp>(f.block, size, map);
    const int bands = (size.height + kBand - 1) / kBand;
    rows::anyOrder({size.width * kBand, bands}, [&](int band) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            const int end = std::min((band + 1) * kBand, size.height);
            for (int left = 0; left < size.width; left += kStrip) {
                const int right = std::min(left + kStrip, size.width);
                for (int y = band * kBand; y < end; ++y) {
                    const u32* const entries = map + std::ptrdiff_t(y) * size.width;
                    if (y + kRowsAhead < end)
                        prefetch(src, entries + std::ptrdiff_t(kRowsAhead) * size.width, left, right);
                    pixels::sampleRow(src, dst.row(y).data(), left, right,
                        [=](int x, auto at) { return at(pixels::unpackedPlace(entries[x], size)); });
                }
            }
        });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 1032,
        .entry = {.place = 98, .name = "Tunnel", .guid = "ED8A19BD-37E7-49e4-B6FA-D25095C41D44"},
        .shown = {.title = "Tunnel", .summary = "Stretches the rim of a circle outwards."},
        .reads = {.radius = {"Clear Circle Size", "size of the clear circle"}, .position = true},
        .defaults = {.usageMask = 6},
        .rebuiltOnChange = kAmDirtyMap | kAmDirtyMap2,
        .alpha = Alpha::computed,
        .apply = warp<Tunnel>},
    {.id = 1033,
        .entry = {.place = 99, .name = "Enlarge", .guid = "22F62993-FF48-4182-B70E-29A6CDBD05AA"},
        .shown = {.title = "Enlarge", .summary = "A lens that magnifies the centre."},
        .reads = {.percent = {"Strength", "strength of the lens"}, .position = true},
        .defaults = {.usageMask = 4},
        .rebuiltOnChange = kAmDirtyAll,
        .alpha = Alpha::computed,
        .apply = warp<Enlarge>},
    {.id = 1034,
        .entry = {.place = 100, .name = "Narrow", .guid = "07992914-52E9-4e8f-A022-01BE34F9C4F0"},
        .shown = {.title = "Narrow", .summary = "Pinches the picture towards the centre."},
        .reads = {.percent = {"Strength", "strength of the pinch"}, .position = true},
        .defaults = {.usageMask = 4},
        .rebuiltOnChange = kAmDirtyAll,
        .alpha = Alpha::computed,
        .apply = warp<Narrow>},
    {.id = 1035,
        .entry = {.place = 101, .name = "Whirl", .guid = "44650ECB-CC5A-4de9-8840-825573599B94"},
        .shown = {.title = "Whirl", .summary = "Turns the picture around the centre, most there."},
        .reads = {.percent = {"Turn", "turn at the centre, 100 for half a turn"}, .position = true},
        .defaults = {.usageMask = 4},
        .rebuiltOnChange = kAmDirtyAll,
        .alpha = Alpha::computed,
        .apply = warp<Whirl>},
};
static_assert(isSound(kRows));

const Registered registered{Family::local, kRows};

} // namespace

} // namespace KEXSDK::am
