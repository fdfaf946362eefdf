// Pixels somewhere in memory: address, size, stride. Views own nothing and are passed by value.
#pragma once

#include "pixels/Pixel.h"

#include <span>
#include <type_traits>

namespace pixels {

/// The engine's pictures have sides of 1 to this many pixels.
inline constexpr int kLargestSide = 4096;

struct Extent {
    int width;
    int height;
    friend constexpr bool operator==(Extent, Extent) = default;
};

struct Point {
    int x;
    int y;
    friend constexpr bool operator==(Point, Point) = default;
};

/// Rows lie strideBytes apart and hold width pixels; the picture's bottom row is the first in memory.
template <class PixelType> class BasicView {
    using Byte = std::conditional_t<std::is_const_v<PixelType>, const u8, u8>;

public:
    constexpr BasicView() = default;
    BasicView(Byte* bytes, Extent size, std::ptrdiff_t strideBytes)
        : bytes_(bytes),
          size_(size),
          stride_(strideBytes)
    {
    }
    /// Rows without padding.
    BasicView(Byte* bytes, Extent size) : BasicView(bytes, size, std::ptrdiff_t(size.width) * 4) { }
    /// A writable view is readable too.
    template <class Other>
    requires(std::is_const_v<PixelType>&& std::is_same_v<Other, std::remove_const_t<PixelType>>)
        BasicView(const BasicView<Other>& other)
        : BasicView(other.bytes(), other.extent(), other.strideBytes())
    {
    }

    Byte* bytes() const { return bytes_; }
    Extent extent() const { return size_; }
    int width() const { return size_.width; }
    int height() const { return size_.height; }
    std::ptrdiff_t strideBytes() const { return stride_; }
    bool packed() const { return stride_ == std::ptrdiff_t(size_.width) * 4; }

    /// Row y in memory order, 0 <= y < height.
    std::span<PixelType> row(int y) const
    {
        return {reinterpret_cast<PixelType*>(bytes_ + y * stride_), std::size_t(size_.width)};
    }
    /// Row v counted from the top of the picture.
    std::span<PixelType> pictureRow(int v) const { return row(size_.height - 1 - v); }
    /// Rows [first, end) in memory order.
    BasicView rows(int first, int end) const
    {
        return {bytes_ + first * stride_, {size_.width, end - first}, stride_};
    }
    PixelType& at(int x, int y) const { return row(y)[std::size_t(x)]; }
    /// The rectangle of that size from column x of row y on; it must lie inside.
    BasicView part(int x, int y, Extent size) const
    {
        return {bytes_ + y * stride_ + std::ptrdiff_t(x) * 4, size, stride_};
    }

private:
    Byte* bytes_ = nullptr;
    Extent size_{0, 0};
    std::ptrdiff_t stride_ = 0;
};

using View = BasicView<Bgra>;
using ConstView = BasicView<const Bgra>;

} // namespace pixels
