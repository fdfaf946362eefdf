// Haze removal by the dark channel.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/View.h"

#include <array>

namespace lightroom {

/// Keeps its planes from frame to frame; they are allocated on first use.
class HazeRemoval {
public:
    using Table = std::array<std::array<u8, 256>, 256>; ///< output by haze and input

    /// Clears the picture in place; alpha stays. Without memory, and at amounts that find no haze (0 and
    /// below), the picture stays as it is.
    /// @param amount  percent
    void apply(pixels::View picture, float amount);

private:
    struct Levels {
        u64 darkSum = 0;
        int brightest = 0;
    };
    Levels drawDark(pixels::ConstView picture);
    int drawHaze(pixels::Extent size, double strength);
    void fillTable(int mostHaze, double light);

    pixels::Buffer<u8> dark_; ///< the least colour byte of each pixel
    pixels::Buffer<u8> haze_; ///< the haze over each pixel, never more than its dark level
    Table table_;
};

} // namespace lightroom
