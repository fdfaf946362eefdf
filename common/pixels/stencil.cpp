// The border around a stencil's rows, and stencils that are cheaper by columns: what the three bytes of a
// column have in common serves three pixels.
#include "pixels/stencil.h"

namespace pixels {

void detail::drawBorder(ConstView src, View dst, Border border, int top, int end)
{
    if (border == Border::untouched)
        return;
    const int width = dst.width();
    for (int y = top; y < end; ++y) {
        const bool endRow = y == 0 || y == dst.height() - 1;
        const bool keeps = border == Border::kept || (border == Border::blackSides && endRow);
        const u8 shade = border == Border::white ? 255 : 0;
        const auto draw = [=, from = src.row(y), to = dst.row(y)](int x) {
            const Bgra p = from[std::size_t(x)];
            to[std::size_t(x)] = keeps ? p : grey(p, shade);
        };
        if (endRow || width < 3) {
            for (int x = 0; x < width; ++x)
                draw(x);
        } else {
            draw(0);
            draw(width - 1);
        }
    }
}

void largestOfNine(RowsAround around, int step, u8* to, int count)
{
    const Scratch<u8> columns{std::size_t(count)};
    widest([=, column = columns.data()] {
        const auto larger = [](u8 a, u8 b) { return a > b ? a : b; };
        eachIndex(0, count,
            [=](int i) { column[i] = larger(larger(around.below[i], around.row[i]), around.above[i]); });
        eachIndex(step, count - step,
            [=](int i) { to[i] = larger(larger(column[i - step], column[i]), column[i + step]); });
    });
}

void sharpenRow(RowsAround around, Bgra* to, int width)
{
    const Scratch<u16> columns(std::size_t(width) * 4);
    widest([=, sum = columns.data(), out = reinterpret_cast<u8*>(to)] {
        eachIndex(
            0, 4 * width, [=](int i) { sum[i] = u16(around.below[i] + around.row[i] + around.above[i]); });
        eachIndex(4, 4 * (width - 1), [=](int i) { // in 16 bits, which vectors hold more of
            const i16 sharp = i16(10 * around.row[i] - sum[i - 4] - sum[i] - sum[i + 4]);
            out[i] = u8(std::min<i16>(std::max<i16>(sharp, 0), 255));
        });
        // The loop has sharpened the alpha bytes, too: they become the source's again.
        copyAlpha(reinterpret_cast<const Bgra*>(around.row) + 1, to + 1, width - 2);
    });
}

} // namespace pixels
