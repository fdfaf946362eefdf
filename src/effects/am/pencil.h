// What looks share that draw with a pencil: grey rows, and lightness relative to the neighbourhood.
#pragma once

#include "effects/am/amFrame.h"

#include <array>

namespace KEXSDK::am {

/// Y4 of a row and of the rows below and above it.
struct GreyRows {
    const u8* below;
    const u8* row;
    const u8* above;
};

/// A row of one byte a pixel.
using GreyRow = std::array<u8, kMaxExtent>;

/// from[x] as Y4, for 0 <= x < width.
void greyOut(const pixels::Bgra* from, u8* to, int width);

/// to[x] = the largest of the nine greys around x, for 1 <= x < width - 1.
void largestOfNine(GreyRows greys, u8* to, int width);

/// 256 reciprocals 2^24 / (k + 8) in scratch C, made when dirty bit 0 is set; null without memory.
/// The entry of 0 never counts: it only meets greys of 0.
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
