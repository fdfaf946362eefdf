// Loops over 3x3 neighbourhoods: colour bytes on their own, or one grey byte for each pixel.
#pragma once

#include "effects/am/amFrame.h"
#include "pixels/columns.h"

#include <array>

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

inline const u8* bytesOf(const pixels::Bgra* row) { return reinterpret_cast<const u8*>(row); }
inline u8* bytesOf(pixels::Bgra* row) { return reinterpret_cast<u8*>(row); }

inline void drawBorder(const pixels::Bgra* from, pixels::Bgra* to, int first, int end, bool black)
{
    for (int x = first; x < end; ++x)
        to[x] = black ? pixels::grey(from[x], 0) : from[x];
}

} // namespace detail

/// Every colour byte = kernel(Neighbours of its own channel), a value of 0..255.
template <class Kernel> void eachByteFromNeighbours(const Frame& f, Border border, Kernel kernel)
{
    pixels::rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            const int width = dst.width();
            for (int y = top; y < end; ++y) {
                const pixels::Bgra* const from = src.row(y).data();
                pixels::Bgra* const to = dst.row(y).data();
                const bool endRow = y == 0 || y == dst.height() - 1;
                const bool black = border == Border::black || (border == Border::blackSides && !endRow);
                if (endRow || width < 3) {
                    detail::drawBorder(from, to, 0, width, black);
                    continue;
                }
                detail::mapNeighbours<4>(detail::bytesOf(src.row(y - 1).data()), detail::bytesOf(from),
                    detail::bytesOf(src.row(y + 1).data()), detail::bytesOf(to), 4, 4 * (width - 1), kernel);
                pixels::copyAlpha(from, to, width);
                detail::drawBorder(from, to, 0, 1, black);
                detail::drawBorder(from, to, width - 1, width, black);
            }
        });
    });
}

/// Every pixel off the border becomes the grey kernel(Neighbours in the picture of y4), a value of 0..255.
/// The border is kept. Grey rows are made as they are needed, so no grey picture is ever stored.
template <class Kernel> void eachGreyFromNeighbours(const Frame& f, Kernel kernel)
{
    pixels::rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            const int width = dst.width();
            std::array<std::array<u8, kMaxExtent>, 3> greys;
            std::array<u8, kMaxExtent> drawn;
            const auto greyRow = [&](int y) { return greys[std::size_t(y) % 3].data(); };
            const auto makeGrey = [&](int y) {
                const pixels::Bgra* const from = src.row(y).data();
                u8* const to = greyRow(y);
#pragma GCC ivdep
                for (int x = 0; x < width; ++x)
                    to[x] = u8(y4(pixels::load(from + x)));
            };
            const int first = std::max(top, 1);
            const int last = std::min(end, dst.height() - 1) - 1;
            if (first <= last && width >= 3) {
                makeGrey(first - 1);
                makeGrey(first);
            }
            for (int y = top; y < end; ++y) {
                const pixels::Bgra* const from = src.row(y).data();
                pixels::Bgra* const to = dst.row(y).data();
                if (y < first || y > last || width < 3) {
                    detail::drawBorder(from, to, 0, width, false);
                    continue;
                }
                makeGrey(y + 1);
                detail::mapNeighbours<1>(
                    greyRow(y - 1), greyRow(y), greyRow(y + 1), drawn.data(), 1, width - 1, kernel);
                pixels::mapColumns(from, to, 1, width - 1,
                    [value = drawn.data()](int x, pixels::Bgra p) { return pixels::grey(p, value[x]); });
                to[0] = from[0];
                to[width - 1] = from[width - 1];
            }
        });
    });
}

} // namespace KEXSDK::am
