// The greys of a picture beside the brightest grey around each: what pencil lines are drawn from.
#pragma once

#include "effects/am/amFrame.h"

#include <array>

namespace KEXSDK::am {

using GreyRow = std::array<u8, kMaxExtent>;

/// drawRow(y, grey, brightest) for every row but the first and the last, on any thread: y4 of each pixel of
/// the row, and the largest of the 3 x 3 around it. The first and the last column have no such largest grey.
/// drawRow is compiled into the loop for wide vectors, so keep what it needs in it by value.
template <class DrawRow> void greyMaxima(pixels::ConstView src, DrawRow drawRow)
{
    const int w = src.width();
    if (w < 3 || src.height() < 3)
        return;
    const pixels::Extent inner{w, src.height() - 2};
    pixels::rows::anyOrderRuns(inner, [&](int top, int end) {
        pixels::widest([=] {
            std::array<GreyRow, 3> grey;
            std::array<GreyRow, 3> across; // the largest of three beside each other
            GreyRow brightest;
            const auto fill = [&](int y) {
                const pixels::Bgra* const from = src.row(y).data();
                u8* const greys = grey[std::size_t(y % 3)].data();
                u8* const largest = across[std::size_t(y % 3)].data();
                for (int x = 0; x < w; ++x)
                    greys[x] = u8(y4(pixels::load(from + x)));
                for (int x = 1; x < w - 1; ++x)
                    largest[x] = std::max(std::max(greys[x - 1], greys[x]), greys[x + 1]);
            };
            fill(top);
            fill(top + 1);
            for (int y = top + 1; y <= end; ++y) {
                fill(y + 1);
                const u8* const a = across[0].data();
                const u8* const b = across[1].data();
                const u8* const c = across[2].data();
                u8* const largest = brightest.data();
                for (int x = 1; x < w - 1; ++x)
                    largest[x] = std::max(std::max(a[x], b[x]), c[x]);
                drawRow(y, grey[std::size_t(y % 3)].data(), largest);
            }
        });
    });
}

} // namespace KEXSDK::am
