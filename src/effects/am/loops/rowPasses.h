// Several passes over each row while it stays in the nearest cache.
#pragma once

#include "effects/am/library/amFrame.h"
#include "pixels/ByteTables.h"

namespace KEXSDK::am {

/// One row of pixels, for what a pass leaves to the next one.
class SpareRow {
public:
    pixels::View view(int width) { return {reinterpret_cast<u8*>(pixels_.data()), {width, 1}}; }

private:
    std::array<pixels::Bgra, kMaxExtent> pixels_;
};

/// Every pixel through the kernel, then every channel of the outcome through its table.
template <class Kernel> void mapThenTables(const Frame& f, Kernel kernel, const pixels::ByteTables& tables)
{
    pixels::rows::anyOrder(f.dst.extent(), [&](int y) {
        const pixels::View row = f.dst.rows(y, y + 1);
        pixels::rows::map(f.src.rows(y, y + 1), row, kernel);
        pixels::mapTables(row, row, tables);
    });
}

} // namespace KEXSDK::am
