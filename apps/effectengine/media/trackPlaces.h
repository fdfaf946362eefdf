// The tracks that a container has a place for.
#pragma once

#include "effectengine/media/ffmpeg.h"

namespace tool::media {

/// Whether the container holds sound or subtitles of a codec.
bool holds(const AVOutputFormat& container, AVCodecID codec);

/// How many tracks of sound the container holds.
int soundsIn(const AVOutputFormat& container);

/// The name of a track in messages: its number in the file, its language and its codec.
std::string nameOf(const AVStream& stream);

} // namespace tool::media
