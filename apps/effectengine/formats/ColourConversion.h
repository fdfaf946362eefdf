// What the module for colours offers, which the tool opens for inks with a profile and where it is asked for
// sRGB.
#pragma once

#include "effectengine/formats/PictureFormat.h"

namespace tool {

/// Colours as PNG files tell them in numbers: where white and the lights lie, and the exponent of light from
/// a value.
struct Chromaticities {
    struct Point {
        double x, y;
    };
    Point white, red, green, blue;
    double gamma;
};

class ColourConversion {
public:
    virtual ~ColourConversion() = default;

    /// The picture in sRGB of 8 bits, as relative colorimetric conversion with black point compensation gives
    /// it. Of a grey profile's picture, blue counts. Nothing when the profile cannot be read or is one for
    /// other pixels.
    virtual std::optional<RawPicture> toSrgb(
        const RawPicture& picture, std::span<const u8> profile) const = 0;

    /// A profile for such colours; empty when there is none: light that is not given by its share of white.
    virtual std::vector<u8> profileOf(const ColourCode& code) const = 0;
    virtual std::vector<u8> profileOf(const Chromaticities& colours) const = 0;
};

using OfferColours = const ColourConversion*();

} // namespace tool
