// The order in which a wipe changes the places of a picture.
#pragma once

#include "pixels/View.h"

#include <string>
#include <vector>

namespace transitions {

/// For every place when it changes, from 0 (first) to kLastPlace; width * height values from the top row on.
using WipeOrder = std::vector<u16>;

inline constexpr int kLastPlace = 65535;

/// Where effects look for the pack's wipe pictures, below the resource directory.
inline constexpr const char* kWipeFolder = "wipes";

/// The order of a wipe from left to right. Throws std::bad_alloc.
WipeOrder orderFromLeft(pixels::Extent size);

struct WipePicture {
    WipeOrder order;     ///< empty when the picture cannot be used
    std::string problem; ///< why, for a log line
};

/// Reads the order from a picture's greys, dark places first, scaled to the size. The steps of 8-bit greys
/// are smoothed away; no place moves by more than half a step. Throws std::bad_alloc.
/// @param name  a file (UTF-8). One without a slash that is not in the working directory is looked for in the
///              pack's folder, as it is and with ".png" behind it
WipePicture readWipePicture(const std::string& name, pixels::Extent size);

} // namespace transitions
