// Steps of the photographic adjustment that look at the neighbourhood of a pixel.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/View.h"

namespace lightroom {

/// Local contrast: pixels move away from their blurred surroundings.
/// @param blurred  room for the blurred picture, elsewhere and of the same size
/// @param amount   nothing happens unless 2 < |amount| < 254; half of it is the blur's radius when positive
void clarity(pixels::View picture, pixels::View blurred, float amount);

/// Steepens edges; border pixels are copied. The views must not overlap.
/// @param amount  255 adds all of a pixel's difference from its four neighbours' values
void sharpen(pixels::ConstView src, pixels::View dst, float amount);

/// A veil of light: brightens, and softens by one pixel when the amount is positive.
void diffuse(pixels::View picture, float amount);

/// Barrel and pincushion distortion through a map that stays until the amount changes.
class LensMap {
public:
    /// To be called before apply(). False without memory for the map.
    /// @param amount  percent; above 0 the middle grows, below 0 the corners
    bool prepare(float amount, pixels::Extent size);

    /// Draws every pixel of dst from its place in src. The views have the prepared size.
    void apply(pixels::ConstView src, pixels::View dst) const;

private:
    void draw();

    pixels::Buffer<u32> places_; ///< where each pixel comes from, packed
    pixels::Extent size_{0, 0};
    float amount_ = 0;
};

} // namespace lightroom
