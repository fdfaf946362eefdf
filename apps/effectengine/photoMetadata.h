// The metadata of photographs, EXIF data with the orientation and an ICC profile, read from files' bytes and
// put into those of JPEG and PNG files.
#pragma once

#include "core/Types.h"
#include "effectengine/formats/ColourConversion.h"
#include "pixels/View.h"

#include <span>
#include <vector>

namespace tool {

struct PhotoMetadata {
    int orientation = 1;             ///< see exifOrientation
    std::vector<u8> exif;            ///< empty when there is none that can be read
    std::vector<u8> profile;         ///< for RGB pixels, which stay what they are
    std::vector<u8> ownProfile = {}; ///< for pixels that turn into RGB when they are decoded: greys, inks
    std::optional<ColourCode> colours = {};            ///< what a file says that has no profile
    std::optional<Chromaticities> chromaticities = {}; ///< the same, in an older way
};

/// The metadata in the bytes of a JPEG or PNG file. Damaged data counts as missing, and files of other kinds
/// have none.
PhotoMetadata readPhotoMetadata(std::span<const u8> file);

/// The metadata that a module has found in a file.
PhotoMetadata photoMetadata(FormatHeader header);

/// An EXIF block for an upright picture of that size; empty when there is none that can be read.
std::vector<u8> uprightExif(const PhotoMetadata& metadata, u32 width, u32 height);

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
