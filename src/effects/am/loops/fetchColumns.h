// Pixels of one row fetched from anywhere in a picture, in loops that vectorise.
#pragma once

#include "pixels/View.h"

#include <limits>

namespace KEXSDK::am {

namespace detail {

template <class Offset, class Kernel>
void fetchColumns(const u8* bytes, Offset stride, pixels::Bgra* to, int first, int end, Kernel kernel)
{
#pragma GCC ivdep
    for (int x = first; x < end; ++x) {
        const u32 word = kernel(x, [bytes, stride](int column, int row) {
            u32 fetched;
            std::memcpy(&fetched, bytes + std::ptrdiff_t(Offset(row) * stride + Offset(column) * 4), 4);
            return fetched;
        });
        std::memcpy(to + x, &word, sizeof word);
    }
}

} // namespace detail

/// to[x] = kernel(x, at) for first <= x < end, as a word, where at(column, row) is a pixel of src, inside it.
/// Call it inside widest(); everything the kernel needs must be in it by value.
template <class Kernel>
void fetchColumns(pixels::ConstView src, pixels::Bgra* to, int first, int end, Kernel kernel)
{
    // Twice as many pixels to a register when their offsets fit 32 bits; only strange strides exceed them.
    if (src.strideBytes() <= std::numeric_limits<i32>::max() / src.height())
        detail::fetchColumns(src.bytes(), i32(src.strideBytes()), to, first, end, kernel);
    else
        detail::fetchColumns(src.bytes(), i64(src.strideBytes()), to, first, end, kernel);
}

} // namespace KEXSDK::am
