// The metadata of photographs, EXIF data with the orientation and an ICC profile, read from and put into the
// bytes of JPEG and PNG files.
#pragma once

#include "core/Types.h"
#include "pixels/View.h"

#include <span>
#include <vector>

namespace tool {

struct PhotoMetadata {
    int orientation = 1;     ///< see exifOrientation
    std::vector<u8> exif;    ///< empty when there is none that can be read
    std::vector<u8> profile; ///< for RGB pixels alone: grey and four-ink pictures turn into RGB when decoded
};

/// The metadata in a file's bytes. Damaged data counts as missing, and files of other kinds have none.
PhotoMetadata readPhotoMetadata(std::span<const u8> file);

/// Adds metadata to a JPEG or PNG file as the engine encodes them, with its upright picture of that size.
/// Files of other kinds stay as they are.
/// @return  false when a part was too large for a JPEG file and was left out
bool addPhotoMetadata(std::vector<u8>& file, const PhotoMetadata& metadata, u32 width, u32 height);

/// How the stored picture turns into the upright one: swapped first, then mirrored.
struct Turn {
    bool swapsSides;
    bool mirrorsColumns;
    bool mirrorsRows;
};
Turn turnOf(int orientation);

/// Turns the stored picture into the upright one. The sizes fit each other.
void turnUpright(pixels::ConstView stored, int orientation, pixels::View upright);

} // namespace tool
