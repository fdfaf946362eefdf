// Speckles, scatter and film grain.
#include "core/Random.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amTables.h"
#include "pixels/numbers.h"

#include <array>
#include <cstring>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
namespace rows = pixels::rows;

// Grey speckles, placed by a walk through the noise table. The first pixel of each group of four, and every
// pixel beyond the last full group, adds its place to the walk.
class Speckles {
public:
    Speckles(int threshold, pixels::RandomGenerator& random)
        : threshold_(threshold),
          position_(u32(random.next() & 0x3FF)),
          step_(u32(random.next() & 0x1FF))
    {
    }

    void drawRow(const Bgra* from, Bgra* to, int width, int y)
    {
        int x = 0;
        for (; x + 4 <= width; x += 4) {
            to[x] = next(from[x], u32(x + y));
            for (int i = 1; i < 4; ++i)
                to[x + i] = next(from[x + i], 0);
        }
        for (; x < width; ++x)
            to[x] = next(from[x], u32(x + y));
    }

private:
    Bgra next(Bgra p, u32 place)
    {
        position_ += step_ + place;
        if (noise_[position_ & 0x3FF] >= threshold_)
            return p;
        step_ = noise_[std::size_t(p.b + p.g + p.r)];
        return pixels::grey(p, u8(std::min(128 + step_, 255u)));
    }

    const std::array<u8, 1024>& noise_ = amRandomBytes();
    int threshold_;
    u32 position_;
    u32 step_;
};

i32 noise(const Frame& f)
{
    const int t = 8 * percentOf(f.block) / 100;
    Speckles speckles(t * t, pixels::threadRandom());
    if (t == 0) {
        rows::copy(f.src, f.dst);
        return kAmOk;
    }
    rows::inOrder(f.dst.extent(),
        [&](int y) { speckles.drawRow(f.src.row(y).data(), f.dst.row(y).data(), f.dst.width(), y); });
    return kAmOk;
}

using Offsets = std::array<int, 64>;

// Which edge of the picture is near, if any: there the offsets are pushed inwards. Where both are near, the
// first one counts.
enum class Edge { first, none, last };

Edge edgeAt(int position, int extent, int reach)
{
    return position <= reach ? Edge::first : position >= extent - reach - 1 ? Edge::last : Edge::none;
}

Offsets pushed(const Offsets& offsets, int reach, Edge edge)
{
    const int push = edge == Edge::first ? reach + 1 : -reach - 1;
    Offsets result = offsets;
    if (edge != Edge::none)
        for (int& d : result)
            d = (d + push) >> 1;
    return result;
}

// Moves pixels within the result as it stands, so a pixel may fetch another that was already replaced.
i32 scatter(const Frame& f)
{
    pixels::RandomGenerator& random = pixels::threadRandom();
    const int distance = std::clamp(f.block.percent / 5, 1, 20);
    const int reach = distance >> 1;
    Offsets offsets;
    for (int& d : offsets)
        d = reach - random.next() % distance;
    u32 walkX = u32(random.next());
    u32 walkY = u32(random.next());

    rows::copy(f.src, f.dst);
    const int width = f.dst.width();
    const int height = f.dst.height();
    const int leftEnd = std::min(reach + 1, width);
    const int rightBegin = std::max(leftEnd, width - reach - 1);
    const Offsets left = pushed(offsets, reach, Edge::first);
    const Offsets right = pushed(offsets, reach, Edge::last);
    rows::inOrder(f.dst.extent(), [&](int y) {
        std::array<const Bgra*, 64> sources;
        const Offsets offsetsY = pushed(offsets, reach, edgeAt(y, height, reach));
        for (std::size_t i = 0; i < sources.size(); ++i)
            sources[i] = f.dst.row(std::clamp(y + offsetsY[i], 0, height - 1)).data();

        Bgra* const row = f.dst.row(y).data();
        const auto source = [&](int x, const Offsets& offsetsX) {
            walkX += row[x].b;
            walkY += row[x].g;
            return sources[walkY & 63] + (x + offsetsX[walkX & 63]);
        };
        const auto edge = [&](int x, const Offsets& offsetsX) {
            walkX += row[x].b;
            walkY += row[x].g;
            return sources[walkY & 63] + std::clamp(x + offsetsX[walkX & 63], 0, width - 1);
        };
        for (int x = 0; x < leftEnd; ++x)
            row[x] = *edge(x, left);
        for (int x = leftEnd; x < rightBegin; ++x)
            row[x] = *source(x, offsets);
        for (int x = rightBegin; x < width; ++x)
            row[x] = *edge(x, right);
    });
    return kAmOk;
}

// Each column of a group of four has a sum of its own that runs over the whole picture and selects the
// grain. Sums of bands of rows come first, so that the bands can be drawn independently.
class Grain {
public:
    static constexpr int kBands = 16;
    using Sums = std::array<u32, 4>;

    Grain(int percent, pixels::RandomGenerator& random)
    {
        for (int& g : grain_)
            g = (percent >> 1) - random.next() % percent;
        for (u32& sum : start_)
            sum = u32(random.next());
    }

    void draw(pixels::ConstView src, pixels::View dst)
    {
        const int perBand = (dst.height() + kBands - 1) / kBands;
        const auto eachBand = [&](auto fn) {
            rows::anyOrder({dst.width() * perBand, kBands}, [&](int band) {
                const int top = std::min(band * perBand, dst.height());
                fn(band, top, std::min(top + perBand, dst.height()));
            });
        };
        std::array<Sums, kBands + 1> sums{};
        eachBand([&](int band, int top, int end) { sums[std::size_t(band + 1)] = sumOf(src, top, end); });
        sums[0] = start_;
        for (std::size_t band = 1; band <= kBands; ++band)
            for (std::size_t i = 0; i < 4; ++i)
                sums[band][i] += sums[band - 1][i];
        eachBand([&](int band, int top, int end) { drawBand(src, dst, sums[std::size_t(band)], top, end); });
    }

private:
    static constexpr int kChunk = 1024;

    static void brightness(const Bgra* from, u32* sum, int count)
    {
#pragma GCC ivdep
        for (int x = 0; x < count; ++x) {
            u32 word;
            std::memcpy(&word, from + x, 4);
            sum[x] = (word & 0xFF) + (word >> 8 & 0xFF) + (word >> 16 & 0xFF);
        }
    }

    // fn(first column, count) for pieces of a row; only the last count may be no multiple of four.
    template <class Fn> static void eachChunk(int width, Fn fn)
    {
        for (int x = 0; x < width; x += kChunk)
            fn(x, std::min(kChunk, width - x));
    }

    static Sums sumOf(pixels::ConstView src, int top, int end)
    {
        Sums sums{};
        pixels::widest([&sums, src, top, end] {
            u32 lanes[16] = {};
            u32 rest = 0;
            for (int y = top; y < end; ++y) {
                eachChunk(src.width(), [&](int first, int count) {
                    u32 bright[kChunk + 16];
                    brightness(src.row(y).data() + first, bright, count);
                    const int groups = count & ~3;
                    for (int x = groups; x < count; ++x)
                        rest += bright[x];
                    for (int x = groups; x < groups + 12; ++x)
                        bright[x] = 0;
                    for (int x = 0; x < groups; x += 16)
                        for (int i = 0; i < 16; ++i)
                            lanes[i] += bright[x + i];
                });
            }
            for (std::size_t i = 0; i < 16; ++i)
                sums[i & 3] += lanes[i];
            sums[0] += rest;
        });
        return sums;
    }

    void drawBand(pixels::ConstView src, pixels::View dst, Sums sums, int top, int end) const
    {
        pixels::widest([grain = grain_, sums, src, dst, top, end]() mutable {
            for (int y = top; y < end; ++y) {
                eachChunk(src.width(), [&](int first, int count) {
                    u32 walk[kChunk];
                    brightness(src.row(y).data() + first, walk, count);
                    int x = 0;
                    for (; x + 4 <= count; x += 4)
                        for (int i = 0; i < 4; ++i)
                            walk[x + i] = sums[std::size_t(i)] += walk[x + i];
                    for (; x < count; ++x)
                        walk[x] = sums[0] += walk[x];
                    addGrain(src.row(y).data() + first, dst.row(y).data() + first, walk, grain.data(), count);
                });
            }
        });
    }

    static void addGrain(const Bgra* from, Bgra* to, const u32* walk, const int* grain, int count)
    {
#pragma GCC ivdep
        for (int x = 0; x < count; ++x) {
            u32 word;
            std::memcpy(&word, from + x, 4);
            const Bgra p = pixels::fromWord(word);
            const int n = grain[walk[x] & 63];
            word = pixels::toWord(
                {pixels::clampByte(p.b + n), pixels::clampByte(p.g + n), pixels::clampByte(p.r + n), p.a});
            std::memcpy(to + x, &word, 4);
        }
    }

    Offsets grain_;
    Sums start_;
};

i32 filmGrain(const Frame& f)
{
    Grain(std::clamp(f.block.percent, 1, 100), pixels::threadRandom()).draw(f.src, f.dst);
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 1,
        .entry = {.place = 1, .name = "AmNoise", .guid = "EA2DCED2-D88D-402c-9D70-108FAA8C76D8"},
        .shown = {.title = "Noise", .summary = "Scatters light grey speckles."},
        .reads = {.percent = {"Speckles", "speckles; 100 greys a quarter"}},
        .defaults = {.usageMask = 1},
        .random = true,
        .apply = noise},
    {.id = 3,
        .entry = {.place = 3, .name = "AmPlash", .guid = "4E7B2717-D7A7-4725-83FF-E3705512F8E8"},
        .shown = {.title = "Scatter", .summary = "Moves every pixel a little at random."},
        .reads = {.percent = {"Distance", "distance, 100 for 10 pixels"}},
        .defaults = {.usageMask = 1},
        .random = true,
        .alpha = Alpha::computed,
        .apply = scatter},
    {.id = 4,
        .entry = {.place = 4, .name = "FilmGrain", .guid = "6EEFFABB-4894-446c-8187-3D9D9922E3A9"},
        .shown = {.title = "Film Grain", .summary = "Grain of one brightness for all channels."},
        .reads = {.percent = {"Grain", "amount of grain"}},
        .defaults = {.usageMask = 1},
        .random = true,
        .apply = filmGrain},
};
static_assert(isSound(kRows));

const Registered registered{Family::filter, kRows};

} // namespace

} // namespace KEXSDK::am
