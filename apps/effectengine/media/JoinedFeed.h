// Reads the frames of two clips of which the second begins while the first still runs.
#pragma once

#include "effectengine/media/ClipFrame.h"
#include "effectengine/media/PictureConversion.h"

namespace tool::media {

/// Before the transition come the first clip's frames at their times, during it both at the first one's
/// times, after it the second clip's at theirs. A clip that has ended shows its last frame on.
class JoinedFeed {
public:
    /// @param size        of the pictures
    /// @param secondSize  not larger: what the second clip takes of their middle
    /// @param unit        of all times, which count from the start of the joined clip
    /// @param at          when the second clip begins
    /// @param duration    of the transition
    JoinedFeed(ClipReader& first, ClipReader& second, pixels::Extent size, pixels::Extent secondSize,
        AVRational unit, std::int64_t at, std::int64_t duration);

    /// The next frame of the joined clip, with a picture of each clip that is present. False after the last.
    /// Throws what the readers throw, and when a stop is asked.
    bool next(ClipFrame& in);

private:
    /// One of the clips, read one frame ahead.
    struct Side {
        ClipReader& reader;
        pixels::Extent size; ///< in the middle of the pictures
        ToPicture convert{reader.info(), size.width, size.height};
        Frame shown = makeFrame();
        Frame ahead = makeFrame();
        bool hasAhead = false;

        std::int64_t timeAhead(AVRational unit) const;
        /// Makes the frame ahead the one that is shown.
        void advance();
        /// Writes the shown frame into the middle of the image, in this side's size.
        void picture(const host::Image& image);
    };

    bool nextOfSecond(ClipFrame& in);

    Side first_;
    Side second_;
    AVRational unit_;
    std::int64_t at_;
    std::int64_t end_;  ///< of the transition
    std::int64_t step_; ///< between frames of a clip that has ended
    std::int64_t time_ = -1;
    long long number_ = 0; ///< of the next frame
    bool firstIsOver_ = false;
};

} // namespace tool::media
