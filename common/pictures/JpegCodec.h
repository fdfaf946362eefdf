// JPEG files through the system's JPEG library, which decodes faster than the library for the other kinds,
// and never hands out memory that a damaged file left unwritten.
#pragma once

#include "pictures/PictureCodecs.h"

namespace pictures {

/// Parts of a damaged file that cannot be made out are grey; a file that ends too early is unreadable.
Decoded decodeJpeg(std::istream& file);
/// The size alone, as inspect() answers.
Decoded inspectJpeg(std::istream& file);

struct JpegQuality {
    int percent = 92;
    /// Keeps colour at full resolution instead of half. Saved frames hold drawn edges and come back as
    /// inputs, where halved colour shows; pictures that are only looked at take half the room without it.
    bool fullColour = true;
};

/// The bytes of a JPEG file; empty when the picture is too large for the format. Alpha is dropped.
std::vector<u8> encodeJpeg(const u8* pixels, u32 width, u32 height, JpegQuality quality = {});

} // namespace pictures
