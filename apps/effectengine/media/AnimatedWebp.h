// Animated WebP as a file that FFmpeg reads, whose own decoder for WebP knows single pictures only.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <filesystem>

namespace tool::media {

/// Whether the file is WebP with more than a picture. Reads a few bytes.
bool isAnimatedWebp(const std::filesystem::path& file);

/// Opens the file: a stream of whole frames with their times, durations and transparency. Throws ToolError.
Input openAnimatedWebp(const std::filesystem::path& file);

} // namespace tool::media
