// The average over a square around each pixel, at a constant cost per pixel.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/View.h"

namespace pixels {

/// Works on pictures of one size, whose table of sums it keeps.
class BoxBlur {
public:
    /// Allocates a table of (width + 1) x height cells of four 32-bit sums.
    explicit BoxBlur(Extent size);
    /// False when there was no memory; then apply() must not be called.
    bool ready() const { return bool(sums_); }

    /// Every byte, alpha included, is the truncated mean over the pixels at most `radius` columns and rows
    /// away that lie in the picture.
    /// @param src, dst  of the size given to the constructor; they may be the same rows
    /// @param radius    >= 0
    void apply(ConstView src, View dst, int radius);

private:
    void sumColumns(ConstView src, int left, int width, int radius);
    void averageRow(Bgra* to, int y, int radius);
    u32* cells(int y) const { return sums_.data() + std::size_t(y) * 4 * std::size_t(size_.width + 1); }

    Extent size_;
    Buffer<u32> sums_;
    Buffer<u32> widths_;     ///< four per column: the square's columns that lie in the picture
    Buffer<float> inverses_; ///< kTraceLess over each of widths_
};

} // namespace pixels
