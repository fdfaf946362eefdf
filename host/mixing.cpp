// Fixed-point shares that round as the exact product does, and the loops over them.
#include "host/mixing.h"

#include "pixels/rows.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace host {

namespace {

constexpr int kBits = 22;
constexpr int kOne = 1 << kBits;
// Half a step of the result, and a little more: where the exact product ends in a half, which goes up, the
// product of rounded steps may be short of it by 255 half steps.
constexpr int kUpFromHalf = kOne / 2 + 128;

/// What the effect adds to a byte. No product leaves 32 bits: |difference| x steps is below 2^30.
inline int added(int difference, int steps) { return (difference * steps + kUpFromHalf) >> kBits; }

/// The mix of two pixels as words: in 32 bits throughout, which vectors do without repacking.
inline u32 mixed(u32 from, u32 effect, int steps)
{
    u32 word = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int a = int(from >> shift & 255);
        const int b = int(effect >> shift & 255);
        word |= u32(a + added(b - a, steps)) << shift;
    }
    return word;
}

inline u32 wordAt(const pixels::Bgra* pixel)
{
    u32 word;
    std::memcpy(&word, pixel, sizeof word);
    return word;
}

/// Mixes a row with stepsAt(x) steps of the effect at column x.
template <class Steps>
void mixRow(const pixels::Bgra* from, const pixels::Bgra* effect, pixels::Bgra* to, int width, Steps stepsAt)
{
#pragma GCC ivdep
    for (int x = 0; x < width; ++x) {
        const u32 word = mixed(wordAt(from + x), wordAt(effect + x), stepsAt(x));
        std::memcpy(to + x, &word, sizeof word);
    }
}

/// Mixes pictures; stepsOf(y) makes what mixRow() takes.
template <class StepsOfRow>
void mixRows(pixels::ConstView from, pixels::ConstView effect, pixels::View to, StepsOfRow stepsOf)
{
    pixels::rows::anyOrderRuns(to.extent(), [&](int top, int end) {
        pixels::widest([=] {
            for (int y = top; y < end; ++y)
                mixRow(from.row(y).data(), effect.row(y).data(), to.row(y).data(), to.width(), stepsOf(y));
        });
    });
}

/// What the effect adds to a byte by the exact product. The product of the three has at most 40 bits, the
/// division keeps its side of every half, and 256 makes the truncation one downwards.
inline int exactlyAdded(int difference, float mix, int mask)
{
    return int(double(difference * mask) * double(mix) / 255 + 256.5) - 256;
}

bool areExact(int steps, float mix, int mask)
{
    int wrong = 0;
    for (int d = -255; d <= 255; ++d)
        wrong |= added(d, steps) ^ exactlyAdded(d, mix, mask);
    return wrong == 0;
}

/// Rounded down; the divisor is above 0.
std::int64_t quotient(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

/// The steps nearest to `wanted` that round as the exact product does for every difference. Two shares at
/// which some difference changes its rounding lie further apart than the steps err, so there always are some.
int exactSteps(std::int64_t wanted, float mix, int mask)
{
    std::int64_t low = 0;
    std::int64_t high = kOne;
    for (int d = 1; d <= 255; ++d) {
        const std::int64_t up = std::int64_t(exactlyAdded(d, mix, mask)) * kOne - kUpFromHalf;
        const std::int64_t down = std::int64_t(exactlyAdded(-d, mix, mask)) * kOne - kUpFromHalf;
        low = std::max({low, quotient(up + d - 1, d), quotient(-down - kOne, d) + 1});
        high = std::min({high, quotient(up + kOne - 1, d), quotient(-down, d)});
    }
    return int(std::clamp(wanted, low, high));
}

int stepsFor(float mix, int mask)
{
    const int nearest = int(std::lround(double(mix) * mask / 255 * kOne));
    return areExact(nearest, mix, mask) ? nearest : exactSteps(nearest, mix, mask);
}

} // namespace

MixShares::MixShares(float mix) : mix_(mix)
{
    pixels::widest([&] {
        for (int mask = 0; mask < 256; ++mask)
            steps_[std::size_t(mask)] = stepsFor(mix, mask);
    });
}

void mixPictures(pixels::ConstView from, pixels::ConstView effect, float mix, pixels::View to)
{
    mixRows(from, effect, to, [steps = stepsFor(mix, 255)](int) { return [=](int) { return steps; }; });
}

void mixPictures(pixels::ConstView from, pixels::ConstView effect, const MixShares& shares,
    const MaskPlane& mask, pixels::View to)
{
    mixRows(from, effect, to, [steps = shares.steps().data(), &mask](int y) {
        return [steps, shown = mask.row(y)](int x) { return steps[shown[x]]; };
    });
}

} // namespace host
