// Loops over pixels and the eight around each of them.
#pragma once

#include "pixels/Scratch.h"
#include "pixels/columns.h"
#include "pixels/rows.h"

namespace pixels {

/// A row of bytes with the rows before and after it in memory, which lie below and above it in the picture.
struct RowsAround {
    const u8* below;
    const u8* row;
    const u8* above;
};

/// A byte with the eight bytes of the same channel around it.
struct Neighbours {
    int belowLeft, below, belowRight;
    int left, centre, right;
    int aboveLeft, above, aboveRight;
};

/// What becomes of the outermost pixels, which do not have all eight neighbours.
enum class Border {
    untouched,  ///< what the caller has drawn there
    kept,       ///< the source's pixels
    black,      ///< black with the source's alpha
    blackSides, ///< as black at both ends of the rows, but the whole first and last rows are kept
    white,      ///< white with the source's alpha
};

namespace detail {

/// Draws what rows [top, end) have of the border.
void drawBorder(ConstView src, View dst, Border border, int top, int end);

/// Draws the border, and calls drawRows(top, end) for the runs of rows off it, on any thread, in any order.
template <class DrawRows> void eachRunInside(ConstView src, View dst, Border border, DrawRows drawRows)
{
    rows::anyOrderRuns(dst.extent(), [&](int top, int end) {
        drawBorder(src, dst, border, top, end);
        const int first = std::max(top, 1);
        const int last = std::min(end, dst.height() - 1);
        if (dst.width() >= 3 && first < last)
            drawRows(first, last);
    });
}

} // namespace detail

/// draw(y, rows) for top <= y < end in this order; the rows are `width` bytes each, which make(y, to) has
/// made for y - 1, y and y + 1. Every row is made once, and three are held.
template <class Make, class Draw> void eachMadeRow(int top, int end, int width, Make make, Draw draw)
{
    if (top >= end)
        return;
    const std::size_t count(width);
    const Scratch<u8> held[] = {Scratch<u8>(count), Scratch<u8>(count), Scratch<u8>(count)};
    const auto made = [&](int y) {
        u8* const to = held[(y + 3) % 3].data();
        make(y, to);
        return to;
    };
    RowsAround around{nullptr, made(top - 1), made(top)};
    for (int y = top; y < end; ++y) {
        around = {around.row, around.above, made(y + 1)};
        draw(y, around);
    }
}

/// drawRow(y, rows) for every row off the border, on any thread, in any order: it gets the row of src with
/// those around it, four bytes a pixel, and draws the row of dst but for its first and last pixel. The border
/// is drawn here. The views have one size and do not overlap; there are no rows to draw where a side is
/// shorter than 3.
template <class DrawRow> void stencilRows(ConstView src, View dst, Border border, DrawRow drawRow)
{
    const auto bytes = [src](int y) { return reinterpret_cast<const u8*>(src.row(y).data()); };
    detail::eachRunInside(src, dst, border, [&](int top, int end) {
        for (int y = top; y < end; ++y)
            drawRow(y, RowsAround{bytes(y - 1), bytes(y), bytes(y + 1)});
    });
}

/// drawRow(y, rows) for every row off the border, where the rows have one byte a pixel, which make(y, to) has
/// made of rows of src. The border, the order and the sizes are as for a picture's own rows.
template <class Make, class DrawRow>
void stencilRows(ConstView src, View dst, Border border, Make make, DrawRow drawRow)
{
    detail::eachRunInside(
        src, dst, border, [&](int top, int end) { eachMadeRow(top, end, dst.width(), make, drawRow); });
}

/// to[i] = kernel(Neighbours of byte i), a value of 0..255, for kStep <= i < count - kStep. The rows have
/// `count` bytes, kStep of them to a pixel. Call it inside widest(); everything the kernel needs must be in
/// it by value.
template <int kStep, class Kernel> void mapNeighbours(RowsAround rows, u8* to, int count, Kernel kernel)
{
    eachIndex(kStep, count - kStep, [=](int i) {
        to[i] = u8(kernel(Neighbours{rows.below[i - kStep], rows.below[i], rows.below[i + kStep],
            rows.row[i - kStep], rows.row[i], rows.row[i + kStep], rows.above[i - kStep], rows.above[i],
            rows.above[i + kStep]}));
    });
}

/// Every colour byte off the border = kernel(its Neighbours), a value of 0..255; alpha is the source's. The
/// views have one size and do not overlap. Everything the kernel needs must be in it by value.
template <class Kernel> void stencil(ConstView src, View dst, Border border, Kernel kernel)
{
    stencilRows(src, dst, border, [=](int y, RowsAround around) {
        widest([=, from = src.row(y).data(), to = dst.row(y).data(), width = dst.width()] {
            mapNeighbours<4>(around, reinterpret_cast<u8*>(to), 4 * width, kernel);
            copyAlpha(from + 1, to + 1, width - 2);
        });
    });
}

/// to[i] = the largest of the nine bytes around i, for step <= i < count - step. The rows have `count` bytes,
/// `step` of them to a pixel.
void largestOfNine(RowsAround around, int step, u8* to, int count);

/// to[x] = ten times pixel x less the sum of the nine pixels around and including it, limited to 0..255,
/// alpha kept, for 1 <= x < width - 1. The rows are a picture's, four bytes a pixel.
void sharpenRow(RowsAround around, Bgra* to, int width);

} // namespace pixels
