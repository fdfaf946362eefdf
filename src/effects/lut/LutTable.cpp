// Tetrahedral interpolation in three loops over a block of pixels: places and weights, sums, bytes. The first
// and the last vectorise across pixels, the middle one across the channels of an entry.
#include "effects/lut/LutTable.h"

#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <algorithm>

namespace lut {

namespace {

using pixels::Bgra;

constexpr int kNumbersPerEntry = 3;

// An entry in a vector register: red, green, blue and a number of no meaning.
using Lanes [[gnu::vector_size(16)]] = float;

// A colour lies in one of the six tetrahedra that share the diagonal of its cell: from the lowest corner the
// path runs along the axis with the largest fraction, then along the middle one, to the highest corner.
// Offsets count numbers of the table.
constexpr int kBlock = 64;
struct Paths {
    u32 corner[4][kBlock];
    float weight[4][kBlock];
};

struct Axes {
    float step; ///< in byte values, between neighbouring entries
    int last;   ///< the largest index
    int stepR, stepG, stepB;
};

// Which of two equal fractions counts as larger matters only where an entry is infinite: its weight is 0.
inline void findPath(Bgra p, const Axes& axes, Paths& paths, int i)
{
    // Dividing in vectors is faster than looking the quotients of the 256 bytes up one by one.
    const float xr = float(p.r) / axes.step;
    const float xg = float(p.g) / axes.step;
    const float xb = float(p.b) / axes.step;
    const int ir = int(xr);
    const int ig = int(xg);
    const int ib = int(xb);
    const float fr = xr - float(ir);
    const float fg = xg - float(ig);
    const float fb = xb - float(ib);
    const int alongR = ir < axes.last ? axes.stepR : 0;
    const int alongG = ig < axes.last ? axes.stepG : 0;
    const int alongB = ib < axes.last ? axes.stepB : 0;

    const bool redOverGreen = fr > fg;
    const bool blueOverGreen = redOverGreen ? fb >= fg : fb > fg;
    const bool blueOverRed = redOverGreen ? fb >= fr : fb > fr;
    const int first = redOverGreen ? (blueOverRed ? alongB : alongR) : (blueOverGreen ? alongB : alongG);
    const int last = redOverGreen ? (blueOverGreen ? alongG : alongB) : (blueOverRed ? alongR : alongB);
    const int lowest = ir * axes.stepR + ig * axes.stepG + ib * axes.stepB;
    const int highest = lowest + alongR + alongG + alongB;
    paths.corner[0][i] = u32(lowest);
    paths.corner[1][i] = u32(lowest + first);
    paths.corner[2][i] = u32(highest - last);
    paths.corner[3][i] = u32(highest);

    const float largest = std::max(std::max(fr, fg), fb);
    const float smallest = std::min(std::min(fr, fg), fb);
    const float middle = std::max(std::min(fr, fg), std::min(std::max(fr, fg), fb));
    paths.weight[0][i] = 1 - largest;
    paths.weight[1][i] = largest - middle;
    paths.weight[2][i] = middle - smallest;
    paths.weight[3][i] = smallest;
}

struct Sums {
    float lane[kBlock][4];
};

inline void interpolate(const float* numbers, const Paths& paths, int i, Sums& sums)
{
    Lanes sum{};
    for (int k = 0; k < 4; ++k) {
        Lanes entry;
        std::memcpy(&entry, numbers + paths.corner[k][i], sizeof entry);
        const Lanes term = entry * paths.weight[k][i];
        sum = k == 0 ? term : sum + term;
    }
    std::memcpy(sums.lane[i], &sum, sizeof sum);
}

// The nearest byte. As x - whole is exact, this equals truncating x + 0.5 in double precision.
inline u8 rounded(float x)
{
    const float limited = pixels::clamped(x, 0.0f, 255.0f);
    const int whole = int(limited);
    return u8(whole + (limited - float(whole) >= 0.5f));
}

} // namespace

void LutTable::set(const LutFile& file)
{
    lutSize_ = file.size;
    float* to = numbers_.data();
    for (const LutEntry& entry : file.entries) {
        *to++ = entry.r;
        *to++ = entry.g;
        *to++ = entry.b;
    }
    *to = 0;
}

LutEntry LutTable::entry(int r, int g, int b) const
{
    const float* const at = numbers_.data() + ((b * lutSize_ + g) * lutSize_ + r) * kNumbersPerEntry;
    return {at[0], at[1], at[2]};
}

void LutTable::apply(pixels::ConstView src, pixels::View dst) const
{
    const int stepG = kNumbersPerEntry * lutSize_;
    const Axes axes{.step = 255.0f / float(lutSize_ - 1),
        .last = lutSize_ - 1,
        .stepR = kNumbersPerEntry,
        .stepG = stepG,
        .stepB = stepG * lutSize_};
    const float* const numbers = numbers_.data();
    const int width = dst.width();
    pixels::rows::anyOrderRuns(dst.extent(), [=](int top, int end) {
        pixels::widest([=] {
            Paths paths;
            Sums sums;
            for (int y = top; y < end; ++y) {
                const Bgra* const from = src.row(y).data();
                Bgra* const to = dst.row(y).data();
                for (int x = 0; x < width; x += kBlock) {
                    const int count = std::min(kBlock, width - x);
#pragma GCC ivdep
                    for (int i = 0; i < count; ++i)
                        findPath(pixels::load(from + x + i), axes, paths, i);
                    for (int i = 0; i < count; ++i)
                        interpolate(numbers, paths, i, sums);
#pragma GCC ivdep
                    for (int i = 0; i < count; ++i) {
                        const float* const lane = sums.lane[i];
                        const u8 alpha = pixels::load(from + x + i).a;
                        pixels::store(
                            to + x + i, {rounded(lane[2]), rounded(lane[1]), rounded(lane[0]), alpha});
                    }
                }
            }
        });
    });
}

} // namespace lut
