// What --dry-run tells of clips.
#pragma once

#include "effectengine/media/CompanionClip.h"
#include "effectengine/media/FrameRange.h"
#include "effectengine/runPlan.h"

namespace tool::media {

/// The clip as it is read: size, codec, rate, and its length as far as it is known.
PlannedFile plannedInput(ClipReader& reader);

/// A clip file of that size with frames of the part.
PlannedFile plannedOutput(const std::filesystem::path& out, const ClipPart& part, pixels::Extent size);

/// A step that reads the clip and those beside it.
PlannedStep plannedStep(ClipReader& reader, CompanionClips& companions);

} // namespace tool::media
