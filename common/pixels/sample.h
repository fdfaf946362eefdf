// Pixels read from elsewhere in a picture: the kernel says where they come from.
#pragma once

#include "pixels/StableInput.h"

#include <limits>

namespace pixels {

/// The pixel at `index` of packed pixels, as a word.
inline u32 wordAt(const u8* pixels, int index)
{
    u32 word;
    std::memcpy(&word, pixels + std::ptrdiff_t(index) * 4, sizeof word);
    return word;
}

namespace detail {

template <class Offset, class Kernel>
void sampleRow(const u8* bytes, Offset stride, Bgra* to, int first, int end, Kernel kernel)
{
#pragma GCC ivdep
    for (int x = first; x < end; ++x) {
        const u32 word = kernel(x, [bytes, stride](Point from) {
            return wordAt(bytes + std::ptrdiff_t(Offset(from.y) * stride + Offset(from.x) * 4), 0);
        });
        std::memcpy(to + x, &word, sizeof word);
    }
}

} // namespace detail

/// to[x] = kernel(x, at) for first <= x < end: for kernels that choose or mix what they read, and for parts
/// of rows. at(Point) gives the pixel of src there as a word, and the kernel answers a word; the point must
/// lie inside src. `to` lies outside of src. Call it inside widest(); everything the kernel needs must be in
/// it by value.
template <class Kernel> void sampleRow(ConstView src, Bgra* to, int first, int end, Kernel kernel)
{
    // Twice as many pixels to a register when their offsets fit 32 bits; only strange strides exceed them.
    if (src.strideBytes() * src.height() <= std::numeric_limits<i32>::max())
        detail::sampleRow(src.bytes(), i32(src.strideBytes()), to, first, end, kernel);
    else
        detail::sampleRow(src.bytes(), i64(src.strideBytes()), to, first, end, kernel);
}

/// dst(x, y) = src(kernel(x, y)): the kernel gives a Point inside src. The views are the same memory or do
/// not overlap, and may differ in size. When they are the same memory, src is read from a copy; without
/// memory for that, dst stays as it is. The kernel is copied into each loop, so keep what it needs in it by
/// value.
template <class Kernel> void sample(ConstView src, View dst, Kernel kernel)
{
    const StableInput stable(src, dst);
    const ConstView from = stable.view();
    if (!from.bytes())
        return;
    rows::anyOrderRuns(dst.extent(), [=](int top, int end) {
        widest([=] {
            for (int y = top; y < end; ++y)
                sampleRow(from, dst.row(y).data(), 0, dst.width(),
                    [=](int x, auto at) { return at(kernel(x, y)); });
        });
    });
}

/// A place in a picture as one number, for maps that effects keep: the row in the high half, the column in
/// the low.
constexpr u32 packedPlace(Point place) { return u32(place.y) << 16 | u32(place.x); }

/// The place again or, if it lies outside a picture of this size, the nearest one inside: a buffer may hold
/// what another effect left in it.
constexpr Point unpackedPlace(u32 packed, Extent size)
{
    const int column = int(packed & 0xFFFF);
    const int row = int(packed >> 16);
    return {column < size.width ? column : size.width - 1, row < size.height ? row : size.height - 1};
}

} // namespace pixels
