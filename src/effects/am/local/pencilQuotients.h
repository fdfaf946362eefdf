// Whole-number quotients of the coloured pencils, from inverses that single precision makes.
#pragma once

#include "core/Types.h"

namespace KEXSDK::am {

/// (2^24 / d) * c >> 16 with d = most + 8, both quotients rounded downwards, for 0 <= c <= most <= 255.
/// @param inverse  1 / d, wrong by less than 2^-21 of itself
///
/// That is 256 c / d rounded downwards, but one less where it is a whole number, unless d divides 2^24: what
/// the first rounding takes away suffices to fall below a whole number, and never below the next one.
/// Quotients lie 1 / d apart, so half a unit less in the numerator does the same. A power of two divides
/// 2^24; there a quarter of a unit more keeps whole quotients whole. Numerators are below 2^16, so that the
/// inverse errs by less than 1/32 of their unit.
inline u8 dodged(int c, int most, float inverse)
{
    const int d = most + 8;
    const bool powerOfTwo = (d & (d - 1)) == 0;
    return u8(int((float(256 * c) + (powerOfTwo ? 0.25f : -0.5f)) * inverse));
}

/// (3584 n / d) / 10 for d = excess + 2 n, both quotients rounded downwards, where n is half of
/// `twice`, 2..17.
/// @param inverse  1 / d, wrong by less than 2^-21 of itself
///
/// Two roundings become one: 358.4 n / d, which is 179.2 times 2 n over d, rounded downwards. Its numerator
/// is a multiple of 0.2, so 0.05 more reaches no other whole number. Numerators are below 2^13, where single
/// precision and the inverse err by less than 0.005, so whole quotients stay above theirs.
inline u32 lightening(int twice, float inverse)
{
    constexpr float kHalfOf3584Tenths = 179.2f;
    return u32(int((float(twice) * kHalfOf3584Tenths + 0.05f) * inverse));
}

} // namespace KEXSDK::am
