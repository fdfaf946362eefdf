// EXIF data of TIFF files, whose fields stand in the file's own directories.
#pragma once

#include "core/Types.h"

#include <span>
#include <vector>

namespace tool {

/// What a TIFF file says about its photograph (camera, date, exposure, place) as an EXIF block; empty when it
/// says nothing, or is a file with offsets of 64 bits. Makers' notes, which lose their meaning in another
/// place, stay out.
std::vector<u8> exifOfTiff(std::span<const u8> file);

/// Adds the same fields of an EXIF block to a TIFF file with the lowest byte first. A field that the file has
/// already stays as it is.
void addExifToTiff(std::vector<u8>& file, std::span<const u8> exif);

} // namespace tool
