// Curves of the looks, given by five of their values.
#pragma once

#include "pixels/ByteTables.h"

namespace KEXSDK::am {

/// Values of a curve at 0, 64, 128, 192 and 255.
using CurvePoints = std::array<double, 5>;

/// The monotone cubic through the points: between them it never leaves their range, so a curve that is
/// stored as rising rises everywhere.
constexpr pixels::ByteTable curveThrough(const CurvePoints& v)
{
    constexpr std::array<double, 5> at{0, 64, 128, 192, 255};
    std::array<double, 4> width{};
    std::array<double, 4> slope{};
    for (std::size_t i = 0; i < 4; ++i) {
        width[i] = at[i + 1] - at[i];
        slope[i] = (v[i + 1] - v[i]) / width[i];
    }
    // Inside, the weighted harmonic mean of both sides' slopes; at the ends, the slope of the parabola
    // through three points as far as it keeps the direction.
    const auto end = [](double w0, double w1, double s0, double s1) {
        const double d = ((2 * w0 + w1) * s0 - w0 * s1) / (w0 + w1);
        if (d * s0 <= 0)
            return 0.0;
        const double limit = 3 * s0;
        const bool steep = s0 > 0 ? d > limit : d < limit;
        return s0 * s1 <= 0 && steep ? limit : d;
    };
    std::array<double, 5> tangent{};
    for (std::size_t i = 1; i < 4; ++i) {
        const double before = 2 * width[i] + width[i - 1];
        const double after = width[i] + 2 * width[i - 1];
        if (slope[i - 1] * slope[i] > 0)
            tangent[i] = (before + after) / (before / slope[i - 1] + after / slope[i]);
    }
    tangent[0] = end(width[0], width[1], slope[0], slope[1]);
    tangent[4] = end(width[3], width[2], slope[3], slope[2]);

    return pixels::tableOf([&](int x) {
        const std::size_t i = x < 64 ? 0 : x < 128 ? 1 : x < 192 ? 2 : 3;
        const double t = (x - at[i]) / width[i];
        const double value = v[i] * (1 + 2 * t) * (1 - t) * (1 - t)
            + tangent[i] * width[i] * t * (1 - t) * (1 - t) + v[i + 1] * t * t * (3 - 2 * t)
            + tangent[i + 1] * width[i] * t * t * (t - 1);
        return u8(value <= 0 ? 0 : value >= 255 ? 255 : int(value + 0.5));
    });
}

/// A look's three curves, listed as red, green, blue.
constexpr pixels::ByteTables curvesThrough(const CurvePoints& r, const CurvePoints& g, const CurvePoints& b)
{
    return {.b = curveThrough(b), .g = curveThrough(g), .r = curveThrough(r)};
}

/// A sine-shaped contrast curve; it is steeper the higher the percentage (limited to 0..100).
pixels::ByteTable sineContrast(int percent);

} // namespace KEXSDK::am
