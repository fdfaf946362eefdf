// White balance: colour temperature and tint.
#pragma once

#include "pixels/ByteTables.h"

namespace lightroom {

/// Blends the picture with the colour of a temperature and gives every pixel its lightness back.
class Temperature {
public:
    static constexpr int kNeutral = 11500;

    /// @param value  below kNeutral cools, above it warms
    explicit Temperature(int value);

    /// Draws one row; from and to may be the same.
    void applyToRow(pixels::ConstView from, pixels::View to) const;

private:
    pixels::ByteTables blend_;
};

/// Shifts colours between green and magenta in proportion to their grey.
class Tint {
public:
    /// @param value  below 0 turns colours green, above it magenta; hosts give -100 to 100
    explicit Tint(float value);

    /// from and to may be the same rows.
    void apply(pixels::ConstView from, pixels::View to) const;

private:
    int factor_; ///< in 1/256 of the grey
};

} // namespace lightroom
