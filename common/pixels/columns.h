// Loops over one row, for kernels that depend on the column.
#pragma once

#include "pixels/Pixel.h"

namespace pixels {

/// to[x] = kernel(x, from[x]) for first <= x < end; from and to may be the same row. Call it inside
/// widest(): everything is copied into the loop, which GCC then vectorises as it does those of rows::map.
template <class Kernel> void mapColumns(const Bgra* from, Bgra* to, int first, int end, Kernel kernel)
{
#pragma GCC ivdep
    for (int x = first; x < end; ++x)
        store(to + x, kernel(x, load(from + x)));
}

/// kernel(i) for first <= i < end, in any order; it stores what it makes. Call it inside widest(). Pointers
/// that the kernel captures become the loop's own, so that stores of bytes cannot change them.
template <class Kernel> void eachIndex(int first, int end, Kernel kernel)
{
#pragma GCC ivdep
    for (int i = first; i < end; ++i)
        kernel(i);
}

/// Gives `count` pixels of `to` the alpha of `from`, after loops that worked on all four bytes alike. Call it
/// inside widest().
inline void copyAlpha(const Bgra* from, Bgra* to, int count)
{
    constexpr u32 kColour = 0x00FFFFFF;
#pragma GCC ivdep
    for (int x = 0; x < count; ++x)
        store(to + x, fromWord((toWord(load(to + x)) & kColour) | (toWord(load(from + x)) & ~kColour)));
}

} // namespace pixels
