// Mixing of an effect's picture with its input, by one share or by a share for each pixel.
#pragma once

#include "host/MaskPlane.h"
#include "pixels/View.h"

#include <array>

namespace host {

/// The share that an effect has in the result, for every value of a mask. A byte of the result is exactly
///     floor(from + (effect - from) x mix x mask / 255 + 1/2)
/// for every float mix in 0..1: rounded to the nearest, halves up.
class MixShares {
public:
    /// @param mix  0..1
    explicit MixShares(float mix);

    float mix() const { return mix_; }
    /// In steps of 2^-22; the table of 256 is for masks 0..255.
    const std::array<int, 256>& steps() const { return steps_; }

private:
    float mix_;
    std::array<int, 256> steps_;
};

/// Mixes pictures of one size, each of the four bytes on its own. `to` may be either of the others.
/// @param mix  0..1; 0 gives `from`, 1 gives `effect`
void mixPictures(pixels::ConstView from, pixels::ConstView effect, float mix, pixels::View to);

/// As above, with a mask of the same size: 0 gives `from`, 255 gives what the function above does.
void mixPictures(pixels::ConstView from, pixels::ConstView effect, const MixShares& shares,
    const MaskPlane& mask, pixels::View to);

} // namespace host
