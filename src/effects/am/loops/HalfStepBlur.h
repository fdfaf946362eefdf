// A box blur that averages every other column and every other row.
#pragma once

#include "effects/am/loops/rowPasses.h"
#include "pixels/Scratch.h"
#include "pixels/rows.h"

namespace KEXSDK::am {

/// Columns and rows between the averaged ones are the means of their neighbours; a last column or row that
/// has no neighbour keeps its pixels. A row is averaged as it stands: pixels that were averaged count in the
/// sums of those to their right. Means are truncated, and alpha is blurred like the colours.
class HalfStepBlur {
public:
    /// @param temporary  of the size of src and elsewhere
    /// @param radius     >= 1; up to a few thousand the means are exact
    HalfStepBlur(pixels::ConstView src, pixels::View temporary, int radius);

    /// take(y, row) gets every blurred row, on any thread and in any order; it may change the row.
    template <class Take> void eachRow(Take take)
    {
        averageAlong();
        // Bands are high enough for the cost of their first sums not to matter, and start with even rows.
        const pixels::Extent size = src_.extent();
        const int band = std::max(64, 8 * radius_);
        pixels::rows::anyOrder({size.width * band, (size.height + band - 1) / band},
            [&](int i) { averageAcross(i * band, std::min((i + 1) * band, size.height), take); });
    }

private:
    using Sums = pixels::Scratch<i32>; ///< of every byte of a row

    void averageAlong();
    void averageAcross(int top, int end, auto& take) const;
    /// The sums over the rows around row y.
    void startSums(int y, const Sums& sums) const;
    /// Moves the sums from the rows around y to those around y + 2.
    void slideSums(int y, const Sums& sums) const;
    void meanRow(int y, const Sums& sums, pixels::Bgra* to) const;
    void betweenRows(const pixels::Bgra* a, const pixels::Bgra* b, pixels::Bgra* to) const;

    pixels::ConstView src_;
    pixels::View temporary_;
    int radius_;
    pixels::Scratch<pixels::Bgra> nothing_; ///< zeros: a row beyond the picture
};

// Rows [top, end); top is even.
void HalfStepBlur::averageAcross(int top, int end, auto& take) const
{
    const int width = src_.width();
    const int height = src_.height();
    const Sums sums(width * 4);
    startSums(top, sums);
    const SpareRow spare[] = {SpareRow(width), SpareRow(width), SpareRow(width)};
    pixels::View even = spare[0].view();
    pixels::View next = spare[1].view();
    const pixels::View odd = spare[2].view();
    meanRow(top, sums, even.row(0).data());
    for (int y = top; y < end; y += 2) {
        const bool hasNext = y + 2 < height;
        if (hasNext) {
            slideSums(y, sums);
            meanRow(y + 2, sums, next.row(0).data());
        }
        if (y + 1 < end) {
            if (hasNext)
                betweenRows(even.row(0).data(), next.row(0).data(), odd.row(0).data());
            else
                pixels::rows::copy(temporary_.rows(y + 1, y + 2), odd);
            take(y + 1, odd);
        }
        take(y, even);
        std::swap(even, next);
    }
}

} // namespace KEXSDK::am
