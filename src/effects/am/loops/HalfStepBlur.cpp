// The blur's two passes, along rows and across them, with sums that slide by two pixels.
#include "effects/am/loops/HalfStepBlur.h"

#include "pixels/columns.h"

#include <array>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
namespace rows = pixels::rows;

// Rows that are averaged together: a mean must wait for the one before it in its row, but not for other
// rows'.
constexpr int kTogether = 4;
constexpr int kHalves = 2 * kTogether;

// One pixel of each row that is averaged, in two words: blue and red, green and alpha, 16 bits each.
using Halves = std::array<u32, kHalves>;
constexpr u32 kEvenBytes = 0x00FF00FF;

// Columns 0, 2, ... below width - 1 are averaged. For each of these steps, first how the sums change after
// it, and then the means.
using Steps = pixels::Scratch<Halves>;
constexpr int stepsOf(int width) { return width / 2; }

// Added to every lane of the changes: they go down to -510, and no lane may borrow from the next.
constexpr u32 kBias = 512;

// The exact quotient, for sums up to 255 times a count of a few thousand: half a unit keeps the product away
// from whole numbers by more than single precision errs.
int meanOf(int sum, float inverseCount) { return int((float(sum) + 0.5f) * inverseCount); }

constexpr Bgra between(Bgra a, Bgra b)
{
    const u32 first = pixels::toWord(a);
    const u32 second = pixels::toWord(b);
    return pixels::fromWord((first & second) + ((first ^ second) >> 1 & 0x7F7F7F7F));
}

// How the sums change after each step, counted in source pixels: two enter; the step's own pixel and the odd
// one of the two left behind leave. averageSteps() then adds the step's mean and subtracts the mean left
// behind.
void sumChanges(const Bgra* row, int width, int radius, const Steps& steps, std::size_t half)
{
    for (int step = 0; step < stepsOf(width); ++step) {
        const int x = 2 * step;
        u32 even = kBias | kBias << 16;
        u32 odd = even;
        const auto change = [&](int at, bool comes) {
            if (at < 0 || at >= width)
                return;
            const u32 word = pixels::toWord(pixels::load(row + at));
            const u32 evens = word & kEvenBytes;
            const u32 odds = word >> 8 & kEvenBytes;
            even = comes ? even + evens : even - evens;
            odd = comes ? odd + odds : odd - odds;
        };
        change(x + radius + 1, true);
        change(x + radius + 2, true);
        change(x, false);
        change((x - radius) | 1, false); // the odd column of the two left behind
        steps[std::size_t(step)][half] = even;
        steps[std::size_t(step)][half + 1] = odd;
    }
}

// Sums of the low and of the high 16 bits of each word.
struct RowSums {
    std::array<i32, kHalves> low{};
    std::array<i32, kHalves> high{};

    void add(const Halves& halves)
    {
        for (std::size_t i = 0; i < kHalves; ++i) {
            low[i] += i32(halves[i] & 0xFFFF);
            high[i] += i32(halves[i] >> 16);
        }
    }
    void subtract(const Halves& halves)
    {
        for (std::size_t i = 0; i < kHalves; ++i) {
            low[i] -= i32(halves[i] & 0xFFFF);
            high[i] -= i32(halves[i] >> 16);
        }
    }
};

// Replaces the changes in `steps` by the means. `sums` are those of the first step.
void averageSteps(const Steps& steps, RowSums sums, int width, int radius)
{
    constexpr auto kBiases = [] {
        Halves halves{};
        halves.fill(kBias | kBias << 16);
        return halves;
    }();
    for (int step = 0; step < stepsOf(width); ++step) {
        const int x = 2 * step;
        const int count = std::min(x + radius, width - 1) - std::max(x - radius, 0) + 1;
        const float inverse = 1.0f / float(count);
        Halves& halves = steps[std::size_t(step)];
        Halves means;
        for (std::size_t i = 0; i < kHalves; ++i)
            means[i] = u32(meanOf(sums.low[i], inverse)) | u32(meanOf(sums.high[i], inverse)) << 16;
        sums.add(halves);
        sums.subtract(kBiases);
        sums.add(means);
        halves = means;
        if (const int leavingEven = x - radius + radius % 2; leavingEven >= 0)
            sums.subtract(steps[std::size_t(leavingEven / 2)]);
    }
}

void storeMeans(const Steps& steps, std::size_t half, const Bgra* from, Bgra* to, int width)
{
    for (int step = 0; step < stepsOf(width); ++step) {
        const Halves& means = steps[std::size_t(step)];
        pixels::store(to + 2 * step, pixels::fromWord(means[half] | means[half + 1] << 8));
    }
    to[width - 1] = from[width - 1];
    for (int x = 1; x < ((width - 1) & ~1); x += 2)
        pixels::store(to + x, between(pixels::load(to + x - 1), pixels::load(to + x + 1)));
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
    rows::anyOrderRuns(src_.extent(), [&](int top, int end) {
        const Steps steps(stepsOf(width));
        for (int first = top; first < end; first += kTogether) {
            const int count = std::min(kTogether, end - first);
            RowSums sums;
            for (std::size_t i = 0; i < kTogether; ++i) {
                const Bgra* const row = src_.row(first + std::min(int(i), count - 1)).data();
                sumChanges(row, width, radius_, steps, 2 * i);
                for (int x = 0; x <= std::min(radius_, width - 1); ++x) {
                    sums.low[2 * i] += row[x].b;
                    sums.high[2 * i] += row[x].r;
                    sums.low[2 * i + 1] += row[x].g;
                    sums.high[2 * i + 1] += row[x].a;
                }
            }
            pixels::widest([=, &steps, radius = radius_] { averageSteps(steps, sums, width, radius); });
            for (int i = 0; i < count; ++i)
                storeMeans(steps, std::size_t(2 * i), src_.row(first + i).data(),
                    temporary_.row(first + i).data(), width);
        }
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
