// What GIF's encoder leaves out of transparent animations.
#pragma once

#include "effectengine/media/ffmpeg.h"

namespace tool::media {

/// Makes an encoded frame of a GIF vanish before the next one, so that this one's clear pixels are clear. The
/// encoder lets frames without clear pixels stand. For frames that are whole. Throws std::bad_alloc.
void clearBeforeNext(AVPacket& packet);

} // namespace tool::media
