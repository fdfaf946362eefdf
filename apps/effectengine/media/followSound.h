// Sound that moves the parameters of a look.
#pragma once

#include "effectengine/Look.h"
#include "effectengine/media/ClipSource.h"

namespace tool::media {

/// Gives a run of a look the loudness of the bands that its parameters follow in the first track of a clip's
/// sound. Second 0 is the clip's first frame. Decodes the whole sound, or nothing when no parameter follows
/// any. Throws ToolError, also when the clip passes once, and when a stop is asked.
void followSound(LookRun& run, const Look& look, const ClipSource& clip);

} // namespace tool::media
