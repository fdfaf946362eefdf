// The colour steps of the photographic adjustment on the CPU.
#pragma once

#include "effects/lightroom/Vignette.h"
#include "effects/lightroom/WhiteBalance.h"

#include <optional>

namespace lightroom {

/// The values as hosts give them. Vibrance, highlights, shadows, white and black level are drawn by the GPU
/// only.
struct ColourValues {
    int temperature = Temperature::kNeutral;
    float tint = 0;
    float exposure = 0;
    float brightness = 0;
    float contrast = 0;
    float saturation = 0;
    VignetteValues vignette;
};

/// Moves colours towards the mean of their three channels or away from it.
class Saturation {
public:
    /// @param value  percent: greyer below 0; above 0 greyer up to 50, and deeper colours from there
    explicit Saturation(float value);

    /// from and to may be the same rows.
    void apply(pixels::ConstView from, pixels::View to) const;

private:
    double toMean_; ///< how far colours go towards their mean; negative values lead away from it
};

/// Exposure, brightness and contrast together as one table; each of them rounds to bytes.
pixels::ByteTable toneTable(float exposure, float brightness, float contrast);

/// Runs the steps that are not neutral, in their fixed order, each rounding to bytes.
class ColourSteps {
public:
    /// src and dst may be the same rows.
    void apply(const ColourValues& values, pixels::ConstView src, pixels::View dst);

private:
    Vignette vignette_;
};

} // namespace lightroom
