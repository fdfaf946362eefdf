// What a row's bytes are beside those around them, in the rows below and above and at both sides.
#pragma once

#include "effects/am/library/amFrame.h"
#include "pixels/columns.h"

#include <array>

namespace KEXSDK::am {

/// A row of bytes with the rows below and above it in memory.
struct RowsAround {
    const u8* below;
    const u8* row;
    const u8* above;
};

/// A row of one byte a pixel, and one of four.
using GreyRow = std::array<u8, kMaxExtent>;
using ByteRow = std::array<u8, kMaxExtent * 4>;

/// The bytes of row y of a picture; it must have neighbours on both sides.
inline RowsAround rowsAround(pixels::ConstView src, int y)
{
    const auto bytes = [&](int row) { return reinterpret_cast<const u8*>(src.row(row).data()); };
    return {bytes(y - 1), bytes(y), bytes(y + 1)};
}

/// to[i] = the largest of the nine bytes around i, whose neighbours in the row are kStep bytes away, for
/// kStep <= i < count - kStep.
template <int kStep> void largestOfNine(RowsAround rows, u8* to, int count)
{
    ByteRow columns;
    pixels::widest([=, column = columns.data()] {
        const auto larger = [](u8 a, u8 b) { return a > b ? a : b; };
        pixels::eachIndex(
            0, count, [=](int i) { column[i] = larger(larger(rows.below[i], rows.row[i]), rows.above[i]); });
        pixels::eachIndex(kStep, count - kStep,
            [=](int i) { to[i] = larger(larger(column[i - kStep], column[i]), column[i + kStep]); });
    });
}

/// Ten times the pixel less the nine around it, alpha kept, for 1 <= x < width - 1.
void sharpenRow(RowsAround rows, pixels::Bgra* to, int width);

/// Copies the one-pixel border of rows [top, end), and answers whether there are rows inside of it: those
/// are then [top, end).
inline bool copyBorder(const Frame& f, int& top, int& end)
{
    const int width = f.dst.width();
    const int height = f.dst.height();
    if (width < 3 || height < 3) {
        copyRows(f, top, end);
        return false;
    }
    for (int y = top; y < end; ++y) {
        if (y == 0 || y == height - 1) {
            copyRows(f, y, y + 1);
        } else {
            f.dst.at(0, y) = f.src.at(0, y);
            f.dst.at(width - 1, y) = f.src.at(width - 1, y);
        }
    }
    top = std::max(top, 1);
    end = std::min(end, height - 1);
    return top < end;
}

} // namespace KEXSDK::am
