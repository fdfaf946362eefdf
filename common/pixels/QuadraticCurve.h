// The parabola through three points, solved the way the colour-balance curve is defined.
#pragma once

#include <array>

namespace pixels {

struct QuadraticCurve {
    double a, b, c;

    /// y = a x^2 + b x + c through the points, in their order. Pivots are exchanged from the bottom row up
    /// and never divided out, so the coefficients are exact only where the pivots are 1: that is what
    /// gives the balance effect its shape, and every input gives finite coefficients.
    static QuadraticCurve through(const std::array<std::array<double, 2>, 3>& points);

    double operator()(double x) const { return (a * x + b) * x + c; }
};

} // namespace pixels
