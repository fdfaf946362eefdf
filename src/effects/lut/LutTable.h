// A three-dimensional colour table and its application on the CPU.
#pragma once

#include "lut/LutFile.h"
#include "pixels/View.h"

#include <array>

namespace lut {

/// Holds room for the largest table, about 3 MiB, as part of its node, and so never allocates memory.
class LutTable {
public:
    /// Takes over a file that was read successfully.
    void set(const LutFile& file);
    void clear() { lutSize_ = 0; }

    /// N, entries per axis; 0 without a table.
    int size() const { return lutSize_; }

    /// The entry at these indices, each from 0 to size() - 1.
    LutEntry entry(int r, int g, int b) const;

    /// Looks every pixel up by tetrahedral interpolation, rounds to the nearest byte and limits to 0..255
    /// (NaN gives 0); alpha is copied. src and dst may be the same rows. There must be a table.
    void apply(pixels::ConstView src, pixels::View dst) const;

private:
    int lutSize_ = 0;
    // Red, green and blue of the entries in the order of the file, so that red varies fastest. An entry is
    // read together with the number behind it.
    std::array<float, std::size_t(kLargestLut) * kLargestLut * kLargestLut * 3 + 1> numbers_;
};

} // namespace lut
