// The first stage: frames of a clip, or of a part of it, as the effects want them.
#pragma once

#include "effectengine/media/ClipJob.h"
#include "effectengine/media/FrameRange.h"

#include <set>

namespace media {

class FrameFeed {
public:
    /// @param size     of the pictures
    /// @param range    frames that are shown
    /// @param preRoll  frames before a shown one that effects must see, or host::kAllFrames
    FrameFeed(ClipReader& reader, pixels::Extent size, FrameRange range, long long preRoll);

    /// Shows only the frames of the range that this accepts; to be set before the first next().
    void showOnly(std::set<long long> frames);

    /// The next frame that effects must see, its picture filled when it has one. False after the last.
    /// Throws what the reader throws, and when a stop is asked.
    bool next(FrameIn& in);

private:
    bool shown(long long frame) const;
    bool seen(long long frame) const;

    ClipReader& reader_;
    ToPicture convert_;
    FrameRange range_;
    long long preRoll_;
    std::optional<std::set<long long>> only_;
    bool started_ = false;
};

} // namespace media
