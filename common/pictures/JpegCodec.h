// JPEG files through the system's JPEG library, which decodes faster than the library for the other kinds,
// and never hands out memory that a damaged file left unwritten.
#pragma once

#include "pictures/PictureCodecs.h"

#include <cstddef>
#include <span>

namespace pictures {

/// Whether a file begins like a JPEG file.
bool beginsLikeJpeg(std::span<const u8> file);

/// Parts of a damaged file that cannot be made out are grey; a file that ends too early is unreadable.
Decoded decodeJpeg(std::istream& file);
Decoded decodeJpeg(std::span<const u8> file);
/// The inks of a file of four: cyan, magenta, yellow and black, 0 for none. Other files are unreadable.
Decoded decodeJpegInks(std::span<const u8> file);
/// The size alone, as inspect() answers.
Decoded inspectJpeg(std::istream& file);
Decoded inspectJpeg(std::span<const u8> file);

/// Rows of 32-bit pixels somewhere in memory. The stride, in bytes, is negative where the bottom row is the
/// first.
template <class Byte> struct Rows {
    Byte* top;
    std::ptrdiff_t stride;
};

/// Decodes a file in memory into rows of the picture's own size, as inspectJpeg() told it.
/// @return false when the file cannot be read, or has another size; the rows hold anything then
bool decodeJpegInto(std::span<const u8> file, u32 width, u32 height, Rows<u8> rows);

struct JpegQuality {
    int percent = 92;
    /// Keeps colour at full resolution instead of half. Saved frames hold drawn edges and come back as
    /// inputs, where halved colour shows; pictures that are only looked at take half the room without it.
    bool fullColour = true;
};

/// The bytes of a JPEG file; empty when the picture is too large for the format. Alpha is dropped.
std::vector<u8> encodeJpeg(const u8* pixels, u32 width, u32 height, JpegQuality quality = {});
std::vector<u8> encodeJpeg(Rows<const u8> rows, u32 width, u32 height, JpegQuality quality = {});

} // namespace pictures
