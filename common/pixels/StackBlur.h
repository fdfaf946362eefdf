// Stack Blur: a blur of any radius at a constant cost per pixel.
#pragma once

#include "pixels/View.h"

namespace pixels {

/// Largest radius at which every sum times its multiplier fits 32 bits.
inline constexpr int kMostStackRadius = 254;

/// sum / (radius + 1)² is taken as (sum * multiplier) >> shift in 32 unsigned bits.
struct StackDivisor {
    u32 multiplier;
    u32 shift;
};

/// The published table: the multiplier is the quotient 2^shift / (radius + 1)², rounded up, at the largest
/// shift that keeps it within 512. Sums of equal bytes come out exact.
constexpr StackDivisor stackDivisor(int radius)
{
    const u32 weights = u32(radius + 1) * u32(radius + 1);
    const auto multiplier = [weights](u32 shift) { return ((1u << shift) + weights - 1) / weights; };
    u32 shift = 0;
    while (multiplier(shift + 1) <= 512)
        ++shift;
    return {multiplier(shift), shift};
}

/// Blurs rows and then columns with the weights 1, 2, ..., radius + 1, ..., 2, 1; border pixels repeat
/// outward. Colours count as premultiplied: each pass limits them to the pixel's alpha, which stays.
/// @param radius    0 .. kMostStackRadius; 0 limits only
/// @param src, dst  may be the same rows
void stackBlur(ConstView src, View dst, int radius);

} // namespace pixels
