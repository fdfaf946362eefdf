// Sharpening a row.
#include "effects/am/loops/rowStencils.h"

namespace KEXSDK::am {

void sharpenRow(RowsAround rows, pixels::Bgra* to, int width)
{
    std::array<u16, kMaxExtent * 4> columns;
    pixels::widest([=, sum = columns.data(), out = reinterpret_cast<u8*>(to)] {
        pixels::eachIndex(
            0, 4 * width, [=](int i) { sum[i] = u16(rows.below[i] + rows.row[i] + rows.above[i]); });
        pixels::eachIndex(4, 4 * (width - 1), [=](int i) { // in 16 bits, which vectors hold more of
            const i16 sharp = i16(10 * rows.row[i] - sum[i - 4] - sum[i] - sum[i + 4]);
            out[i] = u8(std::min<i16>(std::max<i16>(sharp, 0), 255));
        });
        // bytes of alpha were sharpened, too
        pixels::copyAlpha(reinterpret_cast<const pixels::Bgra*>(rows.row) + 1, to + 1, width - 2);
    });
}

} // namespace KEXSDK::am
