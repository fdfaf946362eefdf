// A sharp band between rows that are blurred the more the farther away they lie.
#include "effects/am/data/storedCurves.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "effects/am/library/amScratch.h"
#include "pixels/Scratch.h"
#include "pixels/byteQuotient.h"
#include "pixels/columns.h"

#include <array>
#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::ConstView;
using pixels::View;
namespace rows = pixels::rows;

int levelsOf(int width) { return int(std::sqrt(double(width)) * 0.1 + 5.0); }

// The most levels that a picture can have: levelsOf(kMaxExtent).
constexpr int kMostLevels = [] {
    int levels = 5;
    while (100 * (levels - 4) * (levels - 4) <= kMaxExtent)
        ++levels;
    return levels;
}();

// Limits of the percentage: below the first, the largest kernel's sigma would be 0; above the second, the
// weights are nearly equal already.
constexpr int kLeastPercent = -49;
constexpr int kMostPercent = 10000;

// The square kernels of all levels, one after another; level k reaches k pixels in each direction.
class Pyramid {
public:
    explicit Pyramid(u16* weights) : weights_(weights) { }

    static i64 bytes(int levels)
    {
        i64 count = 0;
        for (int k = 1; k <= levels; ++k)
            count += i64(side(k)) * side(k);
        return count * i64(sizeof(u16));
    }
    void build(int levels, int percent)
    {
        u16* to = weights_;
        for (int k = 1; k <= levels; ++k) {
            const double sigma = k * (1 + 0.04 * percent) / levels + 1;
            for (int i = -k; i <= k; ++i)
                for (int j = -k; j <= k; ++j) {
                    const double exponent = -(i * i + j * j) * 3 * sigma / (2 * k * k) / (2 * sigma * sigma);
                    *to++ = u16(4096 * std::exp(exponent));
                }
        }
    }
    /// The centre of level k's kernel; rows lie side(k) apart.
    const u16* centre(int k) const
    {
        const u16* kernel = weights_;
        for (int below = 1; below < k; ++below)
            kernel += side(below) * side(below);
        return kernel + k * side(k) + k;
    }
    static constexpr int side(int k) { return 2 * k + 1; }

private:
    u16* weights_;
};

// One level's kernel, folded: it is symmetric in both directions, so a quarter says everything.
struct FoldedKernel {
    // Taps are taken in groups, so weights of zero follow the last one.
    static constexpr int kGroup = 4;
    static constexpr int kMostTaps = (kMostLevels + kGroup) / kGroup * kGroup;

    int reach = 0;
    u32 total = 1;
    std::array<std::array<u32, kMostTaps>, kMostTaps> weights{}; ///< by distance across and along the rows

    FoldedKernel() = default;
    FoldedKernel(const Pyramid& pyramid, int level) : reach(level)
    {
        const u16* const centre = pyramid.centre(level);
        u32 sum = 0;
        for (int i = 0; i <= level; ++i)
            for (int j = 0; j <= level; ++j) {
                const u32 weight = centre[j * Pyramid::side(level) + i];
                weights[std::size_t(i)][std::size_t(j)] = weight;
                sum += weight * (i > 0 ? 2 : 1) * (j > 0 ? 2 : 1);
            }
        // A buffer that another effect left may hold nothing but zeros.
        total = std::max(sum, 1u);
    }
};

// The weighted mean around the pixels of a row, in pieces that stay in the nearest cache. Rows at the same
// distance above and below are added first. Then, for every distance along the row, each column is weighted
// once and counts for the pixels on both its sides.
class RowBlur {
public:
    // Groups reach beyond the kernel's last line, where weights are zero.
    RowBlur() { std::ranges::fill(folded_, FoldedRow{}); }

    void draw(ConstView src, const FoldedKernel& kernel, int y, Bgra* to)
    {
        for (int x = 0; x < src.width(); x += kChunk) {
            const int count = std::min(kChunk, src.width() - x);
            foldRows(src, kernel.reach, y, x, count);
            for (int i = 0; i <= kernel.reach; ++i)
                addColumns(kernel, i, count);
            divide(kernel, reinterpret_cast<u8*>(to + x), count);
        }
    }

private:
    static constexpr int kChunk = 128;
    static constexpr int kMostBytes = 4 * (kChunk + 2 * kMostLevels);
    using FoldedRow = std::array<u16, kMostBytes>;

    void foldRows(ConstView src, int reach, int y, int x, int count)
    {
        const int first = std::max(x - reach, 0);
        const int end = std::min(x + count + reach, src.width());
        const auto row = [=](int at) {
            return reinterpret_cast<const u8*>(&src.at(first, std::clamp(at, 0, src.height() - 1)));
        };
        for (int j = 0; j <= reach; ++j) {
            const u8* const above = row(y + j);
            const u8* const below = row(y - j);
            const int used = j == 0 ? 0 : 0xFF; // the middle row counts once
            u16* const line = folded_[std::size_t(j)].data();
            u16* const to = line + 4 * (first - (x - reach));
            const int bytes = 4 * (end - first);
#pragma GCC ivdep
            for (int i = 0; i < bytes; ++i)
                to[i] = u16(above[i] + (below[i] & used));
            // Beyond its ends the row goes on with its end pixels.
            for (u16* p = to - 4; p >= line; p -= 4)
                std::memcpy(p, to, 4 * sizeof(u16));
            for (u16* p = to + bytes; p < line + 4 * (count + 2 * reach); p += 4)
                std::memcpy(p, to + bytes - 4, 4 * sizeof(u16));
        }
    }

    void addColumns(const FoldedKernel& kernel, int i, int count)
    {
        const int first = 4 * (kernel.reach - i);
        const int end = 4 * (kernel.reach + count + i);
        for (int j = 0; j <= kernel.reach; j += FoldedKernel::kGroup)
            weigh(&kernel.weights[std::size_t(i)][std::size_t(j)], j, first, end);
        const u32* const left = column_.data() + first;
        const u32* const right = column_.data() + 4 * (kernel.reach + i);
        u32* const sum = sum_.data();
        if (i == 0)
            std::memcpy(sum, left, std::size_t(count) * 4 * sizeof(u32));
        else
#pragma GCC ivdep
            for (int t = 0; t < 4 * count; ++t)
                sum[t] += left[t] + right[t];
    }

    void weigh(const u32* weights, int j, int first, int end)
    {
        const auto line = [&](int k) { return folded_[std::size_t(j + k)].data(); };
        const u16* const a = line(0);
        const u16* const b = line(1);
        const u16* const c = line(2);
        const u16* const d = line(3);
        u32* const column = column_.data();
        const auto weighted = [=](int t) {
            return weights[0] * a[t] + weights[1] * b[t] + weights[2] * c[t] + weights[3] * d[t];
        };
        if (j == 0)
#pragma GCC ivdep
            for (int t = first; t < end; ++t)
                column[t] = weighted(t);
        else
#pragma GCC ivdep
            for (int t = first; t < end; ++t)
                column[t] += weighted(t);
    }

    void divide(const FoldedKernel& kernel, u8* to, int count) const
    {
        const float inverse = pixels::kTraceLess / float(kernel.total);
        const u32* const sum = sum_.data();
#pragma GCC ivdep
        for (int t = 0; t < 4 * count; ++t)
            to[t] = pixels::byteQuotient(sum[t], kernel.total, inverse);
    }

    pixels::Scratch<FoldedRow> folded_{FoldedKernel::kMostTaps};
    alignas(64) std::array<u32, kMostBytes> column_;
    alignas(64) std::array<u32, 4 * kChunk> sum_;
};

// The block's bounds are percentages of the height, from the first row in memory. Its left and right ones
// cannot show: they would keep pixels sharp between top and bottom only, and those rows are sharp anyway.
class Band {
public:
    Band(const AmEffectParams& b, int height, int levels) : levels_(levels)
    {
        const i64 top = i64(b.top) * height / 100;
        const i64 bottom = i64(b.bottom) * height / 100;
        half_ = (bottom - top) / 2;
        centre_ = (top + bottom) / 2;
        slope_ = height / 2 - half_;
    }
    /// How much row y is blurred; 0 for not at all.
    int levelOf(int y) const
    {
        if (slope_ <= 0)
            return 0;
        const i64 distance = y > centre_ ? y - centre_ : centre_ - y;
        return int(std::clamp<i64>((distance - half_) * levels_ / slope_, 0, levels_));
    }

private:
    int levels_;
    i64 half_;
    i64 centre_;
    i64 slope_;
};

View rowOf(View picture, int y)
{
    return {reinterpret_cast<u8*>(picture.row(y).data()), {picture.width(), 1}};
}

ConstView rowOf(ConstView picture, int y)
{
    return {reinterpret_cast<const u8*>(picture.row(y).data()), {picture.width(), 1}};
}

i32 tiltShift(const Frame& f)
{
    constexpr u32 kRebuild = kAmDirtyTable | kAmDirtySize;
    const int levels = levelsOf(f.dst.width());
    if (!ensureScratchC(f.block, Pyramid::bytes(levels), kRebuild))
        return kAmNoMemory;
    Pyramid pyramid(static_cast<u16*>(f.block.scratchC));
    if (takeDirty(f.block, kRebuild))
        pyramid.build(levels, std::clamp(f.block.percent, kLeastPercent, kMostPercent));
    const pixels::Scratch<FoldedKernel> kernels(levels + 1);
    for (int k = 1; k <= levels; ++k)
        kernels[std::size_t(k)] = FoldedKernel(pyramid, k);

    const pixels::ByteTable curve = sineContrast(f.block.percent);
    const pixels::ByteTables curves{curve, curve, curve};
    const Band band(f.block, f.dst.height(), levels);
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        RowBlur blur;
        for (int y = top; y < end; ++y) {
            const View to = rowOf(f.dst, y);
            const int level = band.levelOf(y);
            if (level == 0) {
                pixels::mapTables(rowOf(f.src, y), to, curves);
                continue;
            }
            pixels::widest([&, y] {
                Bgra* const row = to.row(0).data();
                blur.draw(f.src, kernels[std::size_t(level)], y, row);
                pixels::copyAlpha(f.src.row(y).data(), row, f.src.width());
            });
            pixels::mapTables(to, to, curves);
        }
    });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 1041,
        .entry = {.place = 104, .name = "TiltShift", .guid = "20F6C8C9-FF17-469d-B102-EDA9EC540C6B"},
        .shown = {.title = "Tilt-Shift", .summary = "Blurs above and below a sharp band."},
        .reads = {.percent = {"Contrast", "contrast; softness, as it is at the first frame"}, .band = true},
        .defaults = {.top = 40, .bottom = 60, .usageMask = 8},
        .apply = tiltShift},
};
static_assert(isSound(kRows));

const Registered registered{Family::local, kRows};

} // namespace

} // namespace KEXSDK::am
