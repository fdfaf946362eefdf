// Whether picture files are there to their end, found out without decoding them.
#pragma once

#include "core/Types.h"

#include <optional>
#include <span>

namespace pictures {

/// Whether a file holds all that its structure promises, so that it was not cut short: PNG by the checksums
/// of all its chunks up to the last one; JPEG by its segments and scans up to the mark of its end; BMP and
/// uncompressed TGA by their size. Bytes behind the end do not count.
/// @return nothing for other files, which only decoding can tell
std::optional<bool> isWholeByStructure(std::span<const u8> file);

} // namespace pictures
