// Steps of the photographic adjustment that look at the neighbourhood of a pixel.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/View.h"

namespace lightroom {

/// Local contrast: pixels move away from their blurred surroundings.
/// @param blurred  room for the blurred picture
void clarity(pixels::View picture, pixels::View blurred, float amount);

/// Steepens edges; border pixels are copied. The views must not overlap.
void sharpen(pixels::ConstView src, pixels::View dst, float amount);

/// A veil of light: brightens, and softens by one pixel when the amount is positive.
void diffuse(pixels::View picture, float amount);

/// Barrel and pincushion distortion through a map that stays until the amount changes.
class LensMap {
public:
    /// To be called before apply(). False without memory for the map.
    bool prepare(float amount, pixels::Extent size);

    /// Every pixel of dst from its place in src. The views have the prepared size.
    void apply(pixels::ConstView src, pixels::View dst) const;

private:
    void draw();

    pixels::Buffer<u32> places_; ///< where each pixel comes from, packed
    pixels::Extent size_{0, 0};
    float amount_ = 0;
};

} // namespace lightroom
