// Stars, snow and bubbles: sets of particles that go on from frame to frame, drawn as discs.
#include "core/Random.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "pixels/columns.h"
#include "pixels/numbers.h"

#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::Extent;
using pixels::View;

/// Size below 1 marks a particle that has yet to be born.
struct Particle {
    i32 size;
    i32 x;
    i32 y;
    i32 look; ///< brightness, colour or life
};
static_assert(sizeof(Particle) == 16);

struct Disc {
    int x;
    int y;
    int radius;
};

// Quotients of at most a few thousand, without a division per pixel: an estimate that is off by one at most,
// and its correction.
class Quotient {
public:
    explicit Quotient(int divisor) : divisor_(divisor), inverse_(1.0f / float(divisor)) { }
    int operator()(int n) const
    {
        const int estimate = int(float(n) * inverse_);
        const int rest = n - estimate * divisor_;
        return estimate + (rest >= divisor_) - (rest < 0);
    }

private:
    int divisor_;
    float inverse_;
};

// Gives the block's set of `count` particles, all unborn after a change of size. False without memory.
bool ensureParticles(AmEffectParams& block, int count, std::span<Particle>& set)
{
    if (!ensureScratchC(block, i64(sizeof(Particle)) * count, kAmDirtySize))
        return false;
    set = {static_cast<Particle*>(block.scratchC), std::size_t(count)};
    if (takeDirty(block, kAmDirtySize))
        std::ranges::fill(set, Particle{});
    return true;
}

int longerSide(Extent size) { return std::max(size.width, size.height); }

// Frames per second; blocks that never got a rate move as at the standard one.
double frameRateOf(const AmEffectParams& block)
{
    constexpr double kStandard = 25;
    return block.frameRate > 0 ? double(block.frameRate) : kStandard;
}

struct Velocity {
    double x;
    double y;
};

// The unit of movement per frame for the directions 0 down, 1 up, 2 left and 3 right: one position at 25
// frames per second.
Velocity velocityOf(int direction, double frameRate)
{
    constexpr Velocity kUnits[] = {{0, -1}, {0, 1}, {-1, 0}, {1, 0}};
    const double scale = 25 / frameRate;
    return {kUnits[direction].x * scale, kUnits[direction].y * scale};
}

// Moves a particle, unless it is unborn or would cross the edge of its square of positions; answers whether
// it moved.
bool moveWithin(Particle& p, i64 x, i64 y, int lastPosition)
{
    const auto inside = [&](i64 at) { return at >= p.size && at + p.size <= lastPosition; };
    if (p.size < 1 || !inside(x) || !inside(y))
        return false;
    p.x = i32(x);
    p.y = i32(y);
    return true;
}

// The pixel at a position, which counts 2^bits steps across the picture.
int scaled(int position, int extent, int bits) { return (position & ((1 << bits) - 1)) * extent >> bits; }

int movedInside(int centre, int radius, int extent)
{
    return std::min(std::max(centre, radius), extent - radius - 1);
}

// Rows [top, end) of a disc: weight(squared distance) -> share of 256, blend(pixel, share) in the ring
// where inner < squared distance < squared radius.
template <class Weight, class Blend>
void paint(View dst, int top, int end, Disc disc, int inner, Weight weight, Blend blend)
{
    const int firstY = std::max(top, disc.y - disc.radius);
    const int endY = std::min(end, disc.y + disc.radius + 1);
    const int firstX = std::max(0, disc.x - disc.radius);
    const int endX = std::min(dst.width(), disc.x + disc.radius + 1);
    if (firstY >= endY || firstX >= endX)
        return;
    pixels::widest([=] {
        const int outer = disc.radius * disc.radius;
        for (int y = firstY; y < endY; ++y) {
            const int dy2 = (y - disc.y) * (y - disc.y);
            Bgra* const row = dst.row(y).data();
            pixels::mapColumns(row, row, firstX, endX, [=](int x, Bgra p) {
                const int d2 = (x - disc.x) * (x - disc.x) + dy2;
                const Bgra painted = blend(p, weight(d2));
                return d2 > inner && d2 < outer ? painted : p;
            });
        }
    });
}

// Particles lie over each other in the order of the set, so every run of rows goes through all of them.
template <class Draw> void overlay(const Frame& f, std::span<const Particle> set, Draw draw)
{
    pixels::rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        copyRows(f, top, end);
        for (const Particle& p : set)
            draw(p, top, end);
    });
}

constexpr int kInnerless = -1;

i32 star(const Frame& f)
{
    const Extent size = f.dst.extent();
    std::span<Particle> set;
    if (!ensureParticles(f.block, std::clamp(f.block.percent, 1, 100) * longerSide(size) / 25, set))
        return kAmNoMemory;

    pixels::RandomGenerator& random = pixels::threadRandom();
    const int twinkle = pixels::truncated(375 / frameRateOf(f.block));
    for (Particle& p : set) {
        p.look = i32(u32(p.look) - u32(random.next() & twinkle));
        if (p.size >= 1 && p.look >= 1)
            continue;
        p.size = random.next() % 3 + 1;
        p.look = (random.next() & 63) + 192;
        if (p.x == 0 || p.y == 0) {
            p.x = random.next() % 1023 + 1;
            p.y = random.next() % 1023 + 1;
        }
    }
    overlay(f, set, [&](const Particle& p, int top, int end) {
        const int radius = std::min(p.size, 3);
        const Disc disc{movedInside(scaled(p.x, size.width, 10), radius, size.width),
            movedInside(scaled(p.y, size.height, 10), radius, size.height), radius};
        const int life = p.look & 0xFF;
        const int r2 = radius * radius;
        const Quotient quotient(r2);
        paint(
            f.dst, top, end, disc, kInnerless, [=](int d2) { return quotient((r2 - d2) * life); },
            [](Bgra c, int a) -> Bgra {
                const auto white = [=](int v) { return u8((v * (255 - a) + a * 255) >> 8); };
                return {white(c.b), white(c.g), white(c.r), c.a};
            });
    });
    return kAmOk;
}

i32 snow(const Frame& f)
{
    const Extent size = f.dst.extent();
    std::span<Particle> set;
    if (!ensureParticles(f.block, std::clamp(f.block.percent, 1, 100) * longerSide(size) / 100, set))
        return kAmNoMemory;

    pixels::RandomGenerator& random = pixels::threadRandom();
    // Hosts number the directions of snow up, down, right, left: each pair the other way round than
    // velocityOf().
    constexpr int kOrder[] = {1, 0, 3, 2};
    const int direction = kOrder[std::clamp(f.block.direction, 0, 3)];
    const Velocity velocity = velocityOf(direction, frameRateOf(f.block));
    const double reach = (direction < 2 ? size.height : size.width) >> 8;
    const int sizes = 1 + std::clamp(f.block.radius, 0, 100) / 10;
    for (Particle& p : set) {
        const double t = reach * p.size + 1;
        const i64 x = pixels::truncated(velocity.x * t + p.x);
        const i64 y = pixels::truncated(velocity.y * t + p.y);
        if (moveWithin(p, x, y, 1023))
            continue;
        p.size = random.next() % sizes + 1;
        p.x = random.next() & 0x3FF;
        p.y = random.next() & 0x3FF;
        p.look = random.next() % 56 + 200;
    }
    overlay(f, set, [&](const Particle& p, int top, int end) {
        const int radius = 2 * std::min(p.size, 11);
        const Disc disc{movedInside(scaled(p.x, size.width, 10), radius, size.width),
            movedInside(scaled(p.y, size.height, 10), radius, size.height), radius};
        const int brightness = p.look & 0xFF;
        const int r2 = radius * radius;
        const Quotient quotient(3 * r2);
        paint(
            f.dst, top, end, disc, kInnerless, [=](int d2) { return quotient((r2 + 2 * d2) * 256); },
            [=](Bgra c, int w) -> Bgra {
                const auto mixed = [=](int v) { return u8((v * w + (256 - w) * brightness) >> 8); };
                return {mixed(c.b), mixed(c.g), mixed(c.r), c.a};
            });
    });
    return kAmOk;
}

i32 bubble(const Frame& f)
{
    const Extent size = f.dst.extent();
    const int longer = longerSide(size);
    std::span<Particle> set;
    if (!ensureParticles(f.block, std::clamp(f.block.percent, 1, 100) * longer / 300, set))
        return kAmNoMemory;

    pixels::RandomGenerator& random = pixels::threadRandom();
    const int direction = std::clamp(f.block.direction, 0, 3);
    const Velocity velocity = velocityOf(direction, frameRateOf(f.block));
    const double roundX = direction < 3 ? -0.5 : 0.5;
    const double roundY = direction == 1 ? 0.5 : -0.5;
    const int sizes = std::max(1, std::clamp(f.block.radius, 0, 100) / 4);
    for (Particle& p : set) {
        const int t = (sizes + 1) / 5 + 1 + p.size / 4;
        const i64 x = i64(p.x) + pixels::truncated(velocity.x * t + roundX);
        const i64 y = i64(p.y) + pixels::truncated(velocity.y * t + roundY);
        if (moveWithin(p, x, y, 255))
            continue;
        p.size = random.next() % sizes + 1;
        p.x = random.next() & 0xFF;
        p.y = random.next() & 0xFF;
        p.look = i32(pixels::toWord({u8(p.x), u8(p.y), u8(random.next()), 0}));
    }
    overlay(f, set, [&](const Particle& p, int top, int end) {
        const int radius = longer * std::min(p.size, 25) >> 8;
        const Disc disc{scaled(p.x, size.width, 8), scaled(p.y, size.height, 8), radius};
        if (radius == 0)
            return;
        const Bgra colour = pixels::fromWord(u32(p.look));
        const int r2 = radius * radius;
        const Quotient quotient(r2);
        // Truncating r2 / 8 changes nothing: a whole number is above an eighth of the square exactly when it
        // is above its whole part.
        paint(
            f.dst, top, end, disc, r2 / 8,
            [=](int d2) { return quotient(5 * d2 < 4 * r2 ? 160 * d2 : 800 * (r2 - d2)); },
            [=](Bgra c, int w) -> Bgra {
                const auto mixed = [=](int v, int tint) { return u8((v * (256 - w) + w * tint) >> 8); };
                return {mixed(c.b, colour.b), mixed(c.g, colour.g), mixed(c.r, colour.r), c.a};
            });
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 60,
        .entry = {.place = 60, .name = "Star", .guid = "9F0E5279-EA88-427a-BC51-219E916EA8E7"},
        .shown = {.title = "Twinkling Stars", .summary = "White points that twinkle."},
        .reads = {.percent = {"Number of Stars", "number of stars"}},
        .random = true,
        .history = {History::kFromStart},
        .apply = star},
    {.id = 61,
        .entry = {.place = 0, .name = "Snow", .guid = "A1080F1E-9F4E-41ee-B0C2-4E9BD4D49B0D"},
        .shown = {.title = "Soft Snow", .summary = "Falling snow flakes."},
        .reads = {.percent = {"Number of Flakes", "number of flakes"},
            .radius = {"Flake Size", "size of the flakes"},
            .direction = "0 up, 1 down, 2 right, 3 left"},
        .defaults = {.direction = 1, .usageMask = 35},
        .random = true,
        .history = {History::kFromStart},
        .apply = snow},
    {.id = 62,
        .entry = {.place = 61, .name = "Bubble", .guid = "FD40DFF8-3C71-416a-970D-0531586C5DA2"},
        .shown = {.title = "Coloured Bubbles", .summary = "Coloured bubbles that drift."},
        .reads = {.percent = {"Number of Bubbles", "number of bubbles"},
            .radius = {"Bubble Size", "size of the bubbles"},
            .direction = "0 down, 1 up, 2 left, 3 right"},
        .defaults = {.usageMask = 35},
        .random = true,
        .history = {History::kFromStart},
        .apply = bubble},
};
static_assert(isSound(kRows));

const Registered registered{Family::filter, kRows};

} // namespace

} // namespace KEXSDK::am
