// Quotients that fit a byte, without a division for each.
#pragma once

#include "core/Types.h"

namespace pixels {

/// Single precision errs by less than 2^-21 of a quotient. An inverse of this over the divisor makes the
/// quotient smaller by more than that, so the truncated estimate is right or one too low.
inline constexpr float kTraceLess = 1.0f - 1.0f / (1 << 20);

/// sum / divisor, rounded downwards; the quotient is at most 255.
/// @param inverse  kTraceLess / divisor
inline u8 byteQuotient(u32 sum, u32 divisor, float inverse)
{
    const u32 low = u32(int(float(sum) * inverse));
    return u8(low + (sum - low * divisor >= divisor ? 1 : 0));
}

struct Inverses {
    float first;
    float second;
    float third;
};

/// 1 / a, 1 / b and 1 / c for the price of one division; each errs by less than 2^-21 of itself.
inline Inverses inversesOf(float a, float b, float c)
{
    const float ab = a * b;
    const float ofAll = 1.0f / (ab * c);
    const float ofAb = c * ofAll;
    return {b * ofAb, a * ofAb, ab * ofAll};
}

} // namespace pixels
