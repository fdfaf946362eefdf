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
    /// @param part     frames that are shown
    /// @param preRoll  frames before a shown one that effects must see, or kAllFrames
    FrameFeed(ClipReader& reader, pixels::Extent size, const ClipPart& part, long long preRoll);

    /// Does not show these frames; to be set before the first next().
    void leaveOut(std::set<long long> frames);

    /// The next frame that effects must see, with its picture. False after the last.
    /// Throws what the reader throws, and when a stop is asked.
    bool next(ClipFrame& in);

    /// Whether the reader's last frame is one after the part.
    bool readBeyond() const { return readBeyond_; }

private:
    long long wantedFrom(long long frame);
    bool isSeen(long long frame);

    ClipReader& reader_;
    ToPicture convert_;
    ClipPart part_;
    long long preRoll_;
    std::set<long long> leftOut_;
    long long wanted_ = -1; ///< what wantedFrom() answered last
    bool started_ = false;
    bool begun_ = false; ///< the time at which the part starts has come
    bool readBeyond_ = false;
};

} // namespace tool::media
