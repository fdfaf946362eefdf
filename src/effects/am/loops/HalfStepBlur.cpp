// The blur's two passes, along rows and across them, with sums that slide by two pixels.
#include "effects/am/loops/HalfStepBlur.h"

#include "pixels/columns.h"
#include "pixels/transpose.h"

// Vectors are handed over between functions that are always compiled into one.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
namespace rows = pixels::rows;

// Rows that are averaged together: a mean must wait for the one before it in its row, but not for other
// rows'.
constexpr int kTogether = 8;
using Words [[gnu::vector_size(4 * kTogether)]] = u32;
using RowSums [[gnu::vector_size(4 * kTogether)]] = i32;
using Quotients [[gnu::vector_size(4 * kTogether)]] = float;

// One pixel of each of these rows.
struct Column {
    Words words;
};

constexpr u32 kEvenBytes = 0x00FF00FF;

// Columns 0, 2, ... below width - 1 are averaged, each in a step of its own.
constexpr int stepsOf(int width) { return width / 2; }

// Added to both halves of a change, which goes down to -765: no half may borrow from the other.
constexpr u32 kBias = 1024;

// The exact quotient, for sums up to 255 times a count of a few thousand: half a unit keeps the product away
// from whole numbers by more than single precision errs.
int meanOf(int sum, float inverseCount) { return int((float(sum) + 0.5f) * inverseCount); }

// The same for a channel of every row.
inline Words meansOf(const RowSums& sums, float inverseCount)
{
    const Quotients means = (__builtin_convertvector(sums, Quotients) + 0.5f) * inverseCount;
    return Words(__builtin_convertvector(means, RowSums));
}

constexpr u32 between(u32 a, u32 b) { return (a & b) + ((a ^ b) >> 1 & 0x7F7F7F7F); }

constexpr Bgra between(Bgra a, Bgra b)
{
    return pixels::fromWord(between(pixels::toWord(a), pixels::toWord(b)));
}

// Draws the means of all steps. `columns` are the rows' pixels; there are columns of zeros to both sides, as
// far as the radius reaches, and before the first of the means.
inline void averageSteps(const Column* columns, Column* means, int width, int radius)
{
    RowSums b{};
    RowSums g{};
    RowSums r{};
    RowSums a{};
    for (int x = 0; x <= std::min(radius, width - 1); ++x) {
        const Words words = columns[x].words;
        b += RowSums(words & 0xFF);
        g += RowSums(words >> 8 & 0xFF);
        r += RowSums(words >> 16 & 0xFF);
        a += RowSums(words >> 24);
    }
    for (int step = 0; step < stepsOf(width); ++step) {
        const int x = 2 * step;
        const int count = std::min(x + radius, width - 1) - std::max(x - radius, 0) + 1;
        const float inverse = 1.0f / float(count);
        const Words blueAndRed = meansOf(b, inverse) | meansOf(r, inverse) << 16;
        const Words greenAndAlpha = meansOf(g, inverse) | meansOf(a, inverse) << 16;
        means[step].words = blueAndRed | greenAndAlpha << 8;
        // Two pixels come, and two stay behind: of those the even one has its mean by now. The step's own
        // pixel becomes its mean.
        const Words first = columns[x + radius + 1].words;
        const Words second = columns[x + radius + 2].words;
        const Words own = columns[x].words;
        const Words odd = columns[(x - radius) | 1].words;
        const Words even = means[(x - radius + radius % 2) / 2].words;
        const auto change = [&](const Words& ownMean, int shift) {
            const auto half = [=](const Words& words) { return words >> shift & kEvenBytes; };
            return ownMean + (kBias | kBias << 16) + half(first) + half(second) - half(own) - half(odd)
                - half(even);
        };
        const Words evens = change(blueAndRed, 0);
        const Words odds = change(greenAndAlpha, 8);
        b += RowSums(evens & 0xFFFF) - int(kBias);
        r += RowSums(evens >> 16) - int(kBias);
        g += RowSums(odds & 0xFFFF) - int(kBias);
        a += RowSums(odds >> 16) - int(kBias);
    }
}

// Draws a row from its means and from those between them; there is room for one more mean than the row has.
inline void storeMeans(u32* means, const Bgra* from, Bgra* to, int width)
{
    // A last column that would be averaged keeps its pixel.
    means[stepsOf(width)] = pixels::toWord(pixels::load(from + width - 1));
    const int pairs = (width - 1) / 2;
#pragma GCC ivdep
    for (int k = 0; k < pairs; ++k) {
        pixels::store(to + 2 * k, pixels::fromWord(means[k]));
        pixels::store(to + 2 * k + 1, pixels::fromWord(between(means[k], means[k + 1])));
    }
    if (width % 2 == 0)
        pixels::store(to + width - 2, pixels::fromWord(means[pairs]));
    to[width - 1] = from[width - 1];
}

} // namespace

HalfStepBlur::HalfStepBlur(pixels::ConstView src, pixels::View temporary, int radius)
    : src_(src),
      temporary_(temporary),
      radius_(radius),
      nothing_(src.width())
{
    std::ranges::fill(nothing_, Bgra{});
}

void HalfStepBlur::averageAlong()
{
    const int width = src_.width();
    const int before = radius_ + 1;
    const int steps = stepsOf(width);
    rows::anyOrderRuns(src_.extent(), [&](int top, int end) {
        const pixels::Scratch<Column> columns(std::size_t(before + width + radius_ + 2));
        const pixels::Scratch<Column> means(std::size_t(before + steps));
        const pixels::Scratch<u32> meansOfRows(std::size_t(steps + 1) * kTogether);
        std::ranges::fill(columns, Column{});
        std::fill_n(means.begin(), before, Column{});
        pixels::widest([=, src = src_, to = temporary_, radius = radius_, column = columns.data() + before,
                           mean = means.data() + before, rowMeans = meansOfRows.data()] {
            for (int y = top; y < end; y += kTogether) {
                const int count = std::min(kTogether, end - y);
                pixels::transpose(reinterpret_cast<const u8*>(src.row(y).data()), src.strideBytes(),
                    reinterpret_cast<u8*>(column), sizeof(Column), width, count);
                averageSteps(column, mean, width, radius);
                pixels::transpose(reinterpret_cast<const u8*>(mean), sizeof(Column),
                    reinterpret_cast<u8*>(rowMeans), std::ptrdiff_t(steps + 1) * 4, count, steps);
                for (int i = 0; i < count; ++i)
                    storeMeans(rowMeans + std::ptrdiff_t(i) * (steps + 1), src.row(y + i).data(),
                        to.row(y + i).data(), width);
            }
        });
    });
}

void HalfStepBlur::startSums(int y, const Sums& sums) const
{
    const int bytes = 4 * src_.width();
    std::fill_n(sums.begin(), bytes, 0);
    for (int around = std::max(y - radius_, 0); around <= std::min(y + radius_, src_.height() - 1);
         ++around) {
        pixels::widest(
            [=, sum = sums.data(), row = reinterpret_cast<const u8*>(temporary_.row(around).data())] {
                pixels::eachIndex(0, bytes, [=](int i) { sum[i] += row[i]; });
            });
    }
}

void HalfStepBlur::slideSums(int y, const Sums& sums) const
{
    const auto row = [&](int at) {
        const bool inside = at >= 0 && at < src_.height();
        return reinterpret_cast<const u8*>(inside ? temporary_.row(at).data() : nothing_.data());
    };
    pixels::widest([=, bytes = 4 * src_.width(), sum = sums.data(), leave1 = row(y - radius_),
                       leave2 = row(y - radius_ + 1), enter1 = row(y + radius_ + 1),
                       enter2 = row(y + radius_ + 2)] {
        pixels::eachIndex(0, bytes, [=](int i) { sum[i] += enter1[i] + enter2[i] - leave1[i] - leave2[i]; });
    });
}

void HalfStepBlur::meanRow(int y, const Sums& sums, Bgra* to) const
{
    const int count = std::min(y + radius_, src_.height() - 1) - std::max(y - radius_, 0) + 1;
    pixels::widest([=, inverse = 1.0f / float(count), sum = sums.data(), out = reinterpret_cast<u8*>(to),
                       bytes = 4 * src_.width()] {
        pixels::eachIndex(0, bytes, [=](int i) { out[i] = u8(meanOf(sum[i], inverse)); });
    });
}

void HalfStepBlur::betweenRows(const Bgra* a, const Bgra* b, Bgra* to) const
{
    pixels::widest([=, width = src_.width()] {
        pixels::mapColumns(a, to, 0, width, [b](int x, Bgra p) { return between(p, pixels::load(b + x)); });
    });
}

} // namespace KEXSDK::am
