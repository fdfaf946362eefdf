// Reads the frames of a clip, or of a part of it, that effects must see, and converts them to pictures.
#pragma once

#include "effectengine/media/ClipFrame.h"
#include "effectengine/media/FrameRange.h"
#include "effectengine/media/PictureConversion.h"

#include <set>

namespace tool::media {

class FrameFeed {
public:
    /// @param size     of the pictures
    /// @param range    frames that are shown
    /// @param preRoll  frames before a shown one that effects must see, or kAllFrames
    FrameFeed(ClipReader& reader, pixels::Extent size, FrameRange range, long long preRoll);

    /// Shows only the frames of the range that this accepts; to be set before the first next().
    void showOnly(std::set<long long> frames);

    /// The next frame that effects must see, with its picture. False after the last.
    /// Throws what the reader throws, and when a stop is asked.
    bool next(ClipFrame& in);

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

} // namespace tool::media
