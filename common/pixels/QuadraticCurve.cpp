// Elimination without division over a 3 x 4 matrix.
#include "pixels/QuadraticCurve.h"

#include <utility>

namespace pixels {

QuadraticCurve QuadraticCurve::through(const std::array<std::array<double, 2>, 3>& points)
{
    std::array<std::array<double, 4>, 3> m;
    for (int i = 0; i < 3; ++i) {
        const auto [x, y] = points[i];
        m[i] = {x * x, x, 1.0, y};
    }
    for (int k = 0; k < 3; ++k) {
        int exchanges = 0;
        for (int other = 2; m[k][k] == 0 && other > k; --other, ++exchanges)
            std::swap(m[k], m[other]);
        if (k >= 2 - exchanges)
            continue;
        for (int i = k + 1; i < 3; ++i) {
            const double factor = m[i][k];
            for (int j = k; j < 4; ++j)
                m[i][j] -= factor * m[k][j];
        }
    }
    const double c = m[2][3];
    const double b = m[1][3] - m[1][2] * c;
    const double a = m[0][3] - (m[0][1] * b + m[0][2] * c);
    return {a, b, c};
}

} // namespace pixels
