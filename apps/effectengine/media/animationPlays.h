// How often animated pictures are played.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <filesystem>
#include <optional>

namespace tool::media {

/// How often a GIF, an animated PNG or an animated WebP is played; 0 for ever. Empty for other files.
std::optional<int> playsOf(const std::filesystem::path& file);

/// Sets the muxer's option for an animated picture that is played so often; nothing for other containers.
void setPlays(Dictionary& options, const AVOutputFormat& container, int plays);

/// Tells the muxer of an open animated picture how long its last frame is shown, in seconds, which it cannot
/// see from the next one; nothing for other containers, and for 0.
void setFinalDelay(AVFormatContext& output, AVRational seconds);

} // namespace tool::media
