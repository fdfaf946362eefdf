// One row's loop for kernels that depend on the column.
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

} // namespace pixels
