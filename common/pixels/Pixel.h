// One pixel as it lies in memory.
#pragma once

#include "core/Types.h"

#include <cstring>

namespace pixels {

/// Blue, green, red, alpha: the little-endian word 0xAARRGGBB.
struct Bgra {
    u8 b, g, r, a;
    friend constexpr bool operator==(Bgra, Bgra) = default;
};
static_assert(sizeof(Bgra) == 4);

// A pixel as the little-endian word 0xAARRGGBB. Loops over words compile to much better vector code than
// loops over four-byte records.
constexpr Bgra fromWord(u32 w) { return {u8(w), u8(w >> 8), u8(w >> 16), u8(w >> 24)}; }
constexpr u32 toWord(Bgra p) { return u32(p.b) | u32(p.g) << 8 | u32(p.r) << 16 | u32(p.a) << 24; }

inline Bgra load(const Bgra* p)
{
    u32 word;
    std::memcpy(&word, p, sizeof word);
    return fromWord(word);
}
inline void store(Bgra* p, Bgra value)
{
    const u32 word = toWord(value);
    std::memcpy(p, &word, sizeof word);
}

/// Grey in the colour bytes, alpha of p.
constexpr Bgra grey(Bgra p, u8 value) { return {value, value, value, p.a}; }

} // namespace pixels
