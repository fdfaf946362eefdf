// EXIF blocks of photographs: a TIFF file without pixels, read and corrected in place. Everything that is not
// named here keeps its bytes and its place, since makers' notes point into the block in ways of their own.
#pragma once

#include "core/Types.h"

#include <optional>
#include <span>
#include <vector>

namespace tool {

/// Where the first row and column of the stored pixels belong, 1 to 8 as EXIF counts; 1, as they are stored,
/// when the tag is missing or has no such value. Nothing for a block whose header or main directory cannot be
/// read.
std::optional<int> exifOrientation(std::span<const u8> exif);

/// Makes a block describe an upright picture of that size. The small preview, which shows the picture as it
/// was, is taken out: erased, and cut off where the block ends with it. A block that cannot be read becomes
/// empty.
void describeUpright(std::vector<u8>& exif, u32 width, u32 height);

} // namespace tool
