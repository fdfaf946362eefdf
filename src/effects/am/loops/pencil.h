// What looks share that draw with a pencil: grey rows, and lightness relative to the neighbourhood.
#pragma once

#include "effects/am/loops/rowStencils.h"

namespace KEXSDK::am {

/// Y4 of three rows.
using GreyRows = RowsAround;

/// from[x] as Y4, for 0 <= x < width.
void greyOut(const pixels::Bgra* from, u8* to, int width);

/// 2^24 / (k + 8). The entry of 0 never counts: it only meets greys of 0.
inline constexpr auto kDodgeReciprocals = [] {
    std::array<u32, 256> values{};
    for (u32 k = 0; k < values.size(); ++k)
        values[k] = (1u << 24) / (k + 8);
    return values;
}();

/// The same as an effect of the library keeps them: in scratch C, made when dirty bit 0 is set; null without
/// memory.
const u32* dodgeReciprocals(AmEffectParams& block);

/// to[x] = the grey at x relative to the largest of the nine around it: pencil lines on white, for
/// 1 <= x < width - 1.
void drawWithPencil(GreyRows greys, const u32* reciprocals, u8* to, int width);

/// Calls row(y, greys) for rows [top, end), whose neighbours must lie in the picture. The greys of three
/// rows are held, and each is made once.
template <class Row> void eachGreyRow(pixels::ConstView src, int top, int end, Row row)
{
    if (top >= end)
        return;
    std::array<GreyRow, 3> held;
    const auto make = [&](int y) {
        u8* const to = held[std::size_t(y % 3)].data();
        greyOut(src.row(y).data(), to, src.width());
        return to;
    };
    GreyRows greys{nullptr, make(top - 1), make(top)};
    for (int y = top; y < end; ++y) {
        greys = {greys.row, greys.above, make(y + 1)};
        row(y, greys);
    }
}

/// The same for every row of a frame but the first and the last, on any thread; no row at all of a picture
/// without a pixel off its border.
template <class Row> void eachInnerGreyRow(const Frame& f, Row row)
{
    const int height = f.dst.height();
    if (f.dst.width() < 3 || height < 3)
        return;
    pixels::rows::anyOrderRuns(f.dst.extent(),
        [&](int top, int end) { eachGreyRow(f.src, std::max(top, 1), std::min(end, height - 1), row); });
}

/// The same, and the frame's border of one pixel is copied.
template <class Row> void eachGreyRowInside(const Frame& f, Row row)
{
    pixels::rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        if (copyBorder(f, top, end))
            eachGreyRow(f.src, top, end, row);
    });
}

} // namespace KEXSDK::am
