// Several passes over each row while it stays in the nearest cache.
#pragma once

#include "effects/am/library/amFrame.h"
#include "pixels/ByteTables.h"
#include "pixels/Scratch.h"

namespace KEXSDK::am {

/// One row of pixels, for what a pass leaves to the next one. A variable of a function, as Scratch is.
class SpareRow {
public:
    explicit SpareRow(int width) : pixels_(std::size_t(width)) { }
    pixels::View view() const { return {reinterpret_cast<u8*>(pixels_.data()), {int(pixels_.size()), 1}}; }

private:
    pixels::Scratch<pixels::Bgra> pixels_;
};

/// Draws every pixel through the kernel, and then every channel of the outcome through its table.
template <class Kernel> void mapThenTables(const Frame& f, Kernel kernel, const pixels::ByteTables& tables)
{
    pixels::rows::anyOrder(f.dst.extent(), [&](int y) {
        const pixels::View row = f.dst.rows(y, y + 1);
        pixels::rows::map(f.src.rows(y, y + 1), row, kernel);
        pixels::mapTables(row, row, tables);
    });
}

} // namespace KEXSDK::am
