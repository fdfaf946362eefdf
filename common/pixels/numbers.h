// Conversions and blends whose exact rounding every effect relies on; each exists once, here.
#pragma once

#include "core/Types.h"

#include <limits>

namespace pixels {

/// x rounded toward zero, saturating at the limits of int; NaN gives 0. (A plain cast of such values is
/// undefined, and hosts do send them.)
constexpr int truncated(double x)
{
    constexpr double kLow = std::numeric_limits<int>::min();
    constexpr double kHigh = std::numeric_limits<int>::max();
    if (!(x > kLow))
        return x <= kLow ? std::numeric_limits<int>::min() : 0;
    return x < kHigh ? int(x) : std::numeric_limits<int>::max();
}

/// trunc(x + 0.5) in double precision: the engine's "round", which is not symmetric about zero.
constexpr int roundHalfUp(double x) { return truncated(x + 0.5); }

constexpr u8 clampByte(int v) { return u8(v < 0 ? 0 : v > 255 ? 255 : v); }

/// sum / 3 for sums of three bytes, exact up to 765; a plain division takes vectors twice the time.
constexpr u8 third(int sum) { return u8(u32(sum) * 21846u >> 16); }

/// x limited to [low, high]; NaN gives low.
template <class Real> constexpr Real clamped(Real x, Real low, Real high)
{
    return !(x > low) ? low : x < high ? x : high;
}

// The four blends. `a` is the weight of `to`, 0..255.

/// Each term is shifted on its own: at a = 255 the result is to * 255 >> 8, one less than `to` unless that is
/// 0.
constexpr u8 shiftBlend(int from, int to, int a) { return u8((to * a >> 8) + (from * (255 - a) >> 8)); }

/// Each term is divided on its own, so a blend of equal bytes may come out one lower.
constexpr u8 divisionBlend(int from, int to, int a) { return u8(to * a / 255 + from * (255 - a) / 255); }

/// Both terms are added in single precision, and the sum is truncated.
constexpr u8 floatBlend(int from, int to, int a)
{
    return u8(float(to * a) / 255.0f + float(from * (255 - a)) / 255.0f);
}

/// The weights are parts of 256, and the sum is rounded up: a = 0 gives `from`; a = 255 still mixes 1/256
/// of it in.
constexpr u8 ceilingBlend(int from, int to, int a) { return u8((to * a + from * (256 - a) + 255) >> 8); }

} // namespace pixels
