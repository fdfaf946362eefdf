// How strongly an effect shows at each pixel.
#pragma once

#include "host/feather.h"
#include "pixels/View.h"

#include <vector>

namespace host {

/// The values of a mask, 0..255, made of pictures of one size.
class MaskPlane {
public:
    /// @param invert   shows the effect where the picture is dark or transparent
    /// @param feather  as Feather takes it
    MaskPlane(pixels::Extent size, bool invert, double feather);

    /// Takes the values from a picture: luma (ITU-R BT.601) times alpha, each rounded to the nearest.
    void take(pixels::ConstView picture);

    pixels::Extent extent() const { return size_; }
    /// Row y of the picture's memory: width values.
    const u8* row(int y) const { return values_.data() + std::size_t(y) * std::size_t(size_.width); }

private:
    pixels::Extent size_;
    bool invert_;
    Feather feather_;
    std::vector<u8> values_;
};

} // namespace host
