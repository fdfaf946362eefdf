// Pictures for the loops' tests, and the ways to run a loop.
#pragma once

#include "pixels/View.h"
#include "pixels/widest.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace test {

/// A picture whose rows lie further apart than their pixels need. Its bytes count upwards, so that neighbours
/// differ.
struct Padded {
    Padded(int width, int height) : size{width, height}, memory(std::size_t(height) * stride(), 0)
    {
        std::iota(memory.begin(), memory.end(), u8(0));
    }
    std::ptrdiff_t stride() const { return size.width * 4 + 12; }
    pixels::View view() { return {memory.data(), size, stride()}; }

    pixels::Extent size;
    std::vector<u8> memory;
};

/// Calls run() once for each vector width that loops are compiled for.
template <class Run> void onEveryVectorLevel(Run run)
{
    using pixels::VectorLevel;
    for (const auto level : {VectorLevel::base, VectorLevel::avx2, VectorLevel::avx512}) {
        SCOPED_TRACE(testing::Message() << "vector level " << int(level));
        pixels::limitVectors(level);
        run();
    }
}

} // namespace test
