// The integer blends of numbers.h for whole pixels: two bytes to a multiplication, and no division.
#pragma once

#include "pixels/Pixel.h"

namespace pixels {

namespace detail {

inline constexpr u32 kEvenBytes = 0x00FF00FF;

/// Both 16-bit lanes, each at most 255 * 255, divided by 255: (x + 1 + x / 256) / 256 is exact there.
constexpr u32 lanesOver255(u32 lanes)
{
    return (lanes + 0x00010001 + (lanes >> 8 & kEvenBytes)) >> 8 & kEvenBytes;
}

} // namespace detail

/// shiftBlend of all four bytes; `a` is the weight of `to`, 0..255.
constexpr Bgra shiftBlend(Bgra from, Bgra to, int a)
{
    const u32 f = toWord(from);
    const u32 t = toWord(to);
    const u32 b = u32(255 - a);
    const u32 even = ((t & detail::kEvenBytes) * u32(a) >> 8 & detail::kEvenBytes)
        + ((f & detail::kEvenBytes) * b >> 8 & detail::kEvenBytes);
    const u32 odd = ((t >> 8 & detail::kEvenBytes) * u32(a) >> 8 & detail::kEvenBytes)
        + ((f >> 8 & detail::kEvenBytes) * b >> 8 & detail::kEvenBytes);
    return fromWord(even | odd << 8);
}

/// divisionBlend of all four bytes; `a` is the weight of `to`, 0..255.
constexpr Bgra divisionBlend(Bgra from, Bgra to, int a)
{
    const u32 f = toWord(from);
    const u32 t = toWord(to);
    const u32 b = u32(255 - a);
    const u32 even = detail::lanesOver255((t & detail::kEvenBytes) * u32(a))
        + detail::lanesOver255((f & detail::kEvenBytes) * b);
    const u32 odd = detail::lanesOver255((t >> 8 & detail::kEvenBytes) * u32(a))
        + detail::lanesOver255((f >> 8 & detail::kEvenBytes) * b);
    return fromWord(even | odd << 8);
}

/// ceilingBlend of all four bytes; `a` is the weight of `to`, 0..255.
constexpr Bgra ceilingBlend(Bgra from, Bgra to, int a)
{
    const u32 f = toWord(from);
    const u32 t = toWord(to);
    const u32 b = u32(256 - a);
    const u32 even =
        ((t & detail::kEvenBytes) * u32(a) + (f & detail::kEvenBytes) * b + detail::kEvenBytes) >> 8;
    const u32 odd =
        (t >> 8 & detail::kEvenBytes) * u32(a) + (f >> 8 & detail::kEvenBytes) * b + detail::kEvenBytes;
    return fromWord((even & detail::kEvenBytes) | (odd & ~detail::kEvenBytes));
}

} // namespace pixels
