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

#if defined(__x86_64__)
#include <immintrin.h>
#endif

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

// One level's kernel, folded: it is symmetric in both directions, so a quarter says everything. Two weights
// to a number, those of even distances across the rows in the lower half.
struct FoldedKernel {
    static constexpr int kMostPairs = kMostLevels / 2 + 1;

    int reach = 0;
    u32 total = 1;
    bool fitsSigned = true;                                             ///< all weights are below 2^15
    std::array<std::array<u32, kMostPairs>, kMostLevels + 1> weights{}; ///< by distance along the rows

    FoldedKernel() = default;
    FoldedKernel(const Pyramid& pyramid, int level) : reach(level)
    {
        const u16* const centre = pyramid.centre(level);
        u32 sum = 0;
        for (int i = 0; i <= level; ++i)
            for (int j = 0; j <= level; ++j) {
                const u32 weight = centre[j * Pyramid::side(level) + i];
                weights[std::size_t(i)][std::size_t(j / 2)] |= weight << (j % 2 * 16);
                fitsSigned = fitsSigned && weight < 0x8000;
                sum += weight * (i > 0 ? 2 : 1) * (j > 0 ? 2 : 1);
            }
        // A buffer that another effect left may hold nothing but zeros.
        total = std::max(sum, 1u);
    }
    int pairs() const { return reach / 2 + 1; }
};

// sums[t] = the sum of lines[k][2 * t] times the lower and lines[k][2 * t + 1] times the upper half of
// weights[k], k being below `pairs`, for 0 <= t < count. May go on for kBeyond more.
using WeighPairs = void(const u16* const* lines, const u32* weights, int pairs, u32* sums, int count);
constexpr int kBeyond = 32;

void weighPlain(const u16* const* lines, const u32* weights, int pairs, u32* sums, int count)
{
    std::fill_n(sums, count, 0u);
    for (int k = 0; k < pairs; ++k) {
        const u32 even = weights[k] & 0xFFFF;
        const u32 odd = weights[k] >> 16;
        const u16* const line = lines[k];
#pragma GCC ivdep
        for (int t = 0; t < count; ++t)
            sums[t] += even * line[2 * t] + odd * line[2 * t + 1];
    }
}

#if defined(__x86_64__)

// One instruction multiplies and adds the pairs of a register, if values and weights are below 2^15. GCC
// finds it for sums along a row only.

void weighBase(const u16* const* lines, const u32* weights, int pairs, u32* sums, int count)
{
    for (int t = 0; t < count; t += 8) {
        __m128i first = _mm_setzero_si128();
        __m128i second = first;
        for (int k = 0; k < pairs; ++k) {
            const auto* const line = reinterpret_cast<const __m128i*>(lines[k] + 2 * t);
            const __m128i weight = _mm_set1_epi32(int(weights[k]));
            first = _mm_add_epi32(first, _mm_madd_epi16(_mm_loadu_si128(line), weight));
            second = _mm_add_epi32(second, _mm_madd_epi16(_mm_loadu_si128(line + 1), weight));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(sums + t), first);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(sums + t + 4), second);
    }
}

[[gnu::target("avx2")]] void weighAvx2(
    const u16* const* lines, const u32* weights, int pairs, u32* sums, int count)
{
    for (int t = 0; t < count; t += 16) {
        __m256i first = _mm256_setzero_si256();
        __m256i second = first;
        for (int k = 0; k < pairs; ++k) {
            const auto* const line = reinterpret_cast<const __m256i*>(lines[k] + 2 * t);
            const __m256i weight = _mm256_set1_epi32(int(weights[k]));
            first = _mm256_add_epi32(first, _mm256_madd_epi16(_mm256_loadu_si256(line), weight));
            second = _mm256_add_epi32(second, _mm256_madd_epi16(_mm256_loadu_si256(line + 1), weight));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(sums + t), first);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(sums + t + 8), second);
    }
}

[[gnu::target("avx512f,avx512bw")]] void weighAvx512(
    const u16* const* lines, const u32* weights, int pairs, u32* sums, int count)
{
    for (int t = 0; t < count; t += 32) {
        __m512i first = _mm512_setzero_si512();
        __m512i second = first;
        for (int k = 0; k < pairs; ++k) {
            const u16* const line = lines[k] + 2 * t;
            const __m512i weight = _mm512_set1_epi32(int(weights[k]));
            first = _mm512_add_epi32(first, _mm512_madd_epi16(_mm512_loadu_si512(line), weight));
            second = _mm512_add_epi32(second, _mm512_madd_epi16(_mm512_loadu_si512(line + 32), weight));
        }
        _mm512_storeu_si512(sums + t, first);
        _mm512_storeu_si512(sums + t + 16, second);
    }
}

#endif

// The fastest for weights below 2^15.
WeighPairs* weighSigned()
{
#if defined(__x86_64__)
    switch (pixels::vectorLevel()) {
    case pixels::VectorLevel::avx512:
        return weighAvx512;
    case pixels::VectorLevel::avx2:
        return weighAvx2;
    case pixels::VectorLevel::base:
        return weighBase;
    }
#endif
    return weighPlain;
}

// The weighted mean around the pixels of a row, in pieces that stay in the nearest cache. Rows at the same
// distance above and below are added first. Then, for every distance along the row, each column is weighted
// once and counts for the pixels on both its sides.
class RowBlur {
public:
    RowBlur() { std::ranges::fill(folded_, FoldedPair{}); }

    void draw(ConstView src, const FoldedKernel& kernel, int y, Bgra* to)
    {
        WeighPairs* const weigh = kernel.fitsSigned ? weighSigned_ : weighPlain;
        for (int x = 0; x < src.width(); x += kChunk) {
            const int count = std::min(kChunk, src.width() - x);
            foldRows(src, kernel, y, x, count);
            for (int i = 0; i <= kernel.reach; ++i)
                addColumns(kernel, weigh, i, count);
            divide(kernel, reinterpret_cast<u8*>(to + x), count);
        }
    }

private:
    static constexpr int kChunk = 128;
    static constexpr int kMostBytes = 4 * (kChunk + 2 * kMostLevels) + kBeyond;
    using FoldedPair = std::array<u16, 2 * kMostBytes>; ///< rows at an even distance and at the next, in turn

    void foldRows(ConstView src, const FoldedKernel& kernel, int y, int x, int count)
    {
        const int reach = kernel.reach;
        const int first = std::max(x - reach, 0);
        const int end = std::min(x + count + reach, src.width());
        const auto row = [=](int at) {
            return reinterpret_cast<const u8*>(&src.at(first, std::clamp(at, 0, src.height() - 1)));
        };
        for (int k = 0; k < kernel.pairs(); ++k) {
            const u8* const above = row(y + 2 * k);
            const u8* const below = row(y - 2 * k);
            const u8* const nextAbove = row(y + 2 * k + 1);
            const u8* const nextBelow = row(y - 2 * k - 1);
            const int used = k == 0 ? 0 : 0xFF; // the middle row counts once
            u16* const line = folded_[std::size_t(k)].data();
            u16* const to = line + 8 * (first - (x - reach));
            const int bytes = 4 * (end - first);
#pragma GCC ivdep
            for (int i = 0; i < bytes; ++i) {
                to[2 * i] = u16(above[i] + (below[i] & used));
                to[2 * i + 1] = u16(nextAbove[i] + nextBelow[i]);
            }
            // Beyond its ends the row goes on with its end pixels.
            for (u16* p = to - 8; p >= line; p -= 8)
                std::memcpy(p, to, 8 * sizeof(u16));
            for (u16* p = to + 2 * bytes; p < line + 8 * (count + 2 * reach); p += 8)
                std::memcpy(p, to + 2 * bytes - 8, 8 * sizeof(u16));
        }
    }

    void addColumns(const FoldedKernel& kernel, WeighPairs* weigh, int i, int count)
    {
        const int first = 4 * (kernel.reach - i);
        const int end = 4 * (kernel.reach + count + i);
        std::array<const u16*, FoldedKernel::kMostPairs> lines;
        for (std::size_t k = 0; k < lines.size(); ++k)
            lines[k] = folded_[k].data() + 2 * first;
        u32* const left = column_.data() + first;
        weigh(lines.data(), kernel.weights[std::size_t(i)].data(), kernel.pairs(), left, end - first);
        const u32* const right = column_.data() + 4 * (kernel.reach + i);
        u32* const sum = sum_.data();
        if (i == 0)
            std::memcpy(sum, left, std::size_t(count) * 4 * sizeof(u32));
        else
#pragma GCC ivdep
            for (int t = 0; t < 4 * count; ++t)
                sum[t] += left[t] + right[t];
    }

    void divide(const FoldedKernel& kernel, u8* to, int count) const
    {
        const float inverse = pixels::kTraceLess / float(kernel.total);
        const u32* const sum = sum_.data();
#pragma GCC ivdep
        for (int t = 0; t < 4 * count; ++t)
            to[t] = pixels::byteQuotient(sum[t], kernel.total, inverse);
    }

    WeighPairs* weighSigned_ = weighSigned();
    pixels::Scratch<FoldedPair> folded_{FoldedKernel::kMostPairs};
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
