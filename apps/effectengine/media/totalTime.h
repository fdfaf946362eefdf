// The duration of a clip as effects see it.
#pragma once

#include "effectengine/Look.h"
#include "effectengine/clipVerbs.h"

namespace tool::media {

/// The user's choice, or the clip's duration, or where that is unknown the engine's own 5 seconds. Throws
/// ToolError when it is unknown and a keyframe of the look counts in percent of it.
/// @param known  the clip's duration in seconds; 0 unknown
double totalTime(const InputOptions& options, double known, const Look* look);

} // namespace tool::media
