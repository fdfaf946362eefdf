// Warnings about what is lost on a clip's way, one line on stderr each.
#pragma once

#include "effectengine/media/ClipReader.h"

namespace tool::media {

/// Prints a warning about a clip.
void warn(const std::filesystem::path& clip, const std::string& what);

/// Warns of a clip with more than 8 bits a channel.
void warnOfDepth(const ClipInfo& clip);

/// Warns of the damaged frames that the reader has met.
void warnOfDamage(const ClipReader& reader);

} // namespace tool::media
