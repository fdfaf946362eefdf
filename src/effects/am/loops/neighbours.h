// Loops over 3x3 neighbourhoods: colour bytes on their own, or one grey byte for each pixel.
#pragma once

#include "effects/am/loops/pencil.h"

namespace KEXSDK::am {

/// A byte and the same channel's bytes around it; `below` is the row before in memory.
struct Neighbours {
    int belowLeft, below, belowRight;
    int left, centre, right;
    int aboveLeft, above, aboveRight;
};

/// What becomes of the outermost pixels, which have no complete neighbourhood. Alpha is the source's always.
enum class Border {
    kept,       ///< the source's pixels
    black,      ///< black all around
    blackSides, ///< black at both ends of the rows, but the first and the last row are kept
};

namespace detail {

// to[i] = kernel(bytes around i), first <= i < end; a pixel's neighbour is `step` bytes away.
template <int step, class Kernel>
void mapNeighbours(
    const u8* below, const u8* here, const u8* above, u8* to, int first, int end, Kernel kernel)
{
#pragma GCC ivdep
    for (int i = first; i < end; ++i)
        to[i] = u8(kernel({below[i - step], below[i], below[i + step], here[i - step], here[i],
            here[i + step], above[i - step], above[i], above[i + step]}));
}

inline u8* bytesOf(pixels::Bgra* row) { return reinterpret_cast<u8*>(row); }

inline void drawBorder(const pixels::Bgra* from, pixels::Bgra* to, int first, int end, bool black)
{
    for (int x = first; x < end; ++x)
        to[x] = black ? pixels::grey(from[x], 0) : from[x];
}

} // namespace detail

/// Draws the border, and calls drawRow(y) for every other row, whose first and last pixel it draws
/// afterwards.
template <class DrawRow> void eachInnerRow(const Frame& f, Border border, DrawRow drawRow)
{
    pixels::rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        const int width = f.dst.width();
        for (int y = top; y < end; ++y) {
            const pixels::Bgra* const from = f.src.row(y).data();
            pixels::Bgra* const to = f.dst.row(y).data();
            const bool endRow = y == 0 || y == f.dst.height() - 1;
            const bool black = border == Border::black || (border == Border::blackSides && !endRow);
            if (endRow || width < 3) {
                detail::drawBorder(from, to, 0, width, black);
                continue;
            }
            drawRow(y);
            detail::drawBorder(from, to, 0, 1, black);
            detail::drawBorder(from, to, width - 1, width, black);
        }
    });
}

/// Every colour byte = kernel(Neighbours of its own channel), a value of 0..255.
template <class Kernel> void eachByteFromNeighbours(const Frame& f, Border border, Kernel kernel)
{
    eachInnerRow(f, border, [&](int y) {
        pixels::widest([=, rows = rowsAround(f.src, y), from = f.src.row(y).data(), to = f.dst.row(y).data(),
                           width = f.dst.width()] {
            detail::mapNeighbours<4>(
                rows.below, rows.row, rows.above, detail::bytesOf(to), 4, 4 * (width - 1), kernel);
            pixels::copyAlpha(from, to, width);
        });
    });
}

/// Every colour byte = kernel(byte, largest of the nine around it) for three at once: kernel(centre, largest)
/// takes the pixel and the pixel of what is largest in each of its channels, and answers with its alpha.
template <class Kernel> void eachPixelByLargest(const Frame& f, Border border, Kernel kernel)
{
    eachInnerRow(f, border, [&](int y) {
        const int width = f.dst.width();
        ByteRow largest;
        largestOfNine<4>(rowsAround(f.src, y), largest.data(), 4 * width);
        pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(),
                           most = reinterpret_cast<const pixels::Bgra*>(largest.data())] {
            pixels::mapColumns(from, to, 1, width - 1,
                [=](int x, pixels::Bgra p) { return kernel(p, pixels::load(most + x)); });
        });
    });
}

/// Every pixel off the border becomes the grey kernel(Neighbours in the picture of y4), a value of 0..255.
/// The border is kept.
template <class Kernel> void eachGreyFromNeighbours(const Frame& f, Kernel kernel)
{
    eachGreyRowInside(f, [&](int y, GreyRows greys) {
        GreyRow values;
        pixels::widest([=, from = f.src.row(y).data(), to = f.dst.row(y).data(), width = f.dst.width(),
                           drawn = values.data()] {
            detail::mapNeighbours<1>(greys.below, greys.row, greys.above, drawn, 1, width - 1, kernel);
            pixels::mapColumns(
                from, to, 1, width - 1, [=](int x, pixels::Bgra p) { return pixels::grey(p, drawn[x]); });
        });
    });
}

} // namespace KEXSDK::am
