// 4 x 4 colour matrices on row vectors (blue, green, red, 1), in single precision.
#pragma once

#include "pixels/View.h"

#include <array>

namespace pixels {

struct ColourMatrix {
    std::array<std::array<float, 4>, 4> m;

    static ColourMatrix identity();

    /// Rotates hues by an angle about the grey axis and keeps luminance: the grey axis is turned onto z, the
    /// space sheared so that planes of equal luminance lie flat, turned about z, and put back.
    /// @param weights  luminance weights of the first three components
    static ColourMatrix hueRotation(double degrees, const std::array<float, 3>& weights);

    /// The matrix that has the effect of this one followed by `next`.
    ColourMatrix then(const ColourMatrix& next) const;
};

/// Colour byte j = clamp(trunc(b0 m[0][j] + b1 m[1][j] + b2 m[2][j] + m[3][j]), 0, 255); alpha copied.
/// Sums run from left to right. src and dst may be the same rows.
void mapMatrix(ConstView src, View dst, const ColourMatrix& matrix);

} // namespace pixels
