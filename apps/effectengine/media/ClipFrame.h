// Frames between a clip's reader and the effects, and their places in the clip.
#pragma once

#include "effectengine/Look.h"
#include "effectengine/media/ClipReader.h"

#include <array>
#include <vector>

namespace tool::media {

/// Where a frame stands in its clip.
struct FramePlace {
    long long number = 0;
    std::int64_t time = 0; ///< as the file counts, in the clip's time base
    std::int64_t sinceFirst = 0;
    std::int64_t duration = 0; ///< 0 unknown
    bool damaged = false;      ///< in the clip itself
};

/// Seconds since the first frame, and the clip's rate and duration.
FrameTime timeOf(const FramePlace& place, const ClipInfo& clip);

/// A frame on its way to the effects.
struct ClipFrame {
    Frame frame = makeFrame();                ///< as the clip stores it
    std::vector<host::Image> pictures;        ///< one for each clip
    std::array<bool, 2> present{true, false}; ///< which clips that the output shows have a picture now
    FramePlace place;
    bool shown = true; ///< false for frames that only an effect's history needs
};

} // namespace tool::media
