// Composition of colour matrices, and their application to rows.
#include "pixels/ColourMatrix.h"

#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <cmath>
#include <numbers>

namespace pixels {

namespace {

ColourMatrix aboutX(float sine, float cosine)
{
    return {{{{1, 0, 0, 0}, {0, cosine, sine, 0}, {0, -sine, cosine, 0}, {0, 0, 0, 1}}}};
}

ColourMatrix aboutY(float sine, float cosine)
{
    return {{{{cosine, 0, -sine, 0}, {0, 1, 0, 0}, {sine, 0, cosine, 0}, {0, 0, 0, 1}}}};
}

ColourMatrix aboutZ(float sine, float cosine)
{
    return {{{{cosine, sine, 0, 0}, {-sine, cosine, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}};
}

ColourMatrix shearedZ(float x, float y)
{
    return {{{{1, 0, x, 0}, {0, 1, y, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}};
}

} // namespace

ColourMatrix ColourMatrix::identity() { return {{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}}; }

ColourMatrix ColourMatrix::then(const ColourMatrix& next) const
{
    ColourMatrix product;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            product.m[row][column] = m[row][0] * next.m[0][column] + m[row][1] * next.m[1][column]
                + m[row][2] * next.m[2][column] + m[row][3] * next.m[3][column];
        }
    }
    return product;
}

ColourMatrix ColourMatrix::hueRotation(double degrees, const std::array<float, 3>& weights)
{
    const float half = float(1 / std::numbers::sqrt2);
    const float third = float(1 / std::numbers::sqrt3);
    const float twoThirds = float(std::numbers::sqrt2 / std::numbers::sqrt3);
    const ColourMatrix greyToZ = identity().then(aboutX(half, half)).then(aboutY(-third, twoThirds));

    const auto luminance = [&](int axis) {
        return weights[0] * greyToZ.m[0][axis] + weights[1] * greyToZ.m[1][axis]
            + weights[2] * greyToZ.m[2][axis] + greyToZ.m[3][axis];
    };
    const float shearX = luminance(0) / luminance(2);
    const float shearY = luminance(1) / luminance(2);
    const double angle = degrees * std::numbers::pi / 180;
    return greyToZ.then(shearedZ(shearX, shearY))
        .then(aboutZ(float(std::sin(angle)), float(std::cos(angle))))
        .then(shearedZ(-shearX, -shearY))
        .then(aboutY(third, twoThirds))
        .then(aboutX(-half, half));
}

void mapMatrix(ConstView src, View dst, const ColourMatrix& matrix)
{
    rows::map(src, dst, [m = matrix.m](Bgra p) {
        const float b = p.b;
        const float g = p.g;
        const float r = p.r;
        const auto component = [&](int j) {
            const float sum = b * m[0][j] + g * m[1][j] + r * m[2][j] + m[3][j];
            return u8(int(clamped(sum, 0.0f, 255.0f)));
        };
        return Bgra{component(0), component(1), component(2), p.a};
    });
}

} // namespace pixels
