// Greymaps and pixmaps, "P5" and "P6" files, of up to 16 bits. (The library for the other kinds takes the
// bytes of 16-bit ones for 8-bit pixels, reads beyond them, and does not scale to the largest value.)
#pragma once

#include "pictures/PictureCodecs.h"

namespace pictures {

/// Whether the file begins like one; leaves it at its start.
bool isPnm(std::istream& file);

// These answer as the functions without "Pnm" do.
Decoded decodePnm(std::istream& file);
Decoded inspectPnm(std::istream& file);
DecodedGrey decodeGreyPnm(std::istream& file);

} // namespace pictures
