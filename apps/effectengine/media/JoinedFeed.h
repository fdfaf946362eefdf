// Frames of two clips, the second beginning while the first still runs.
#pragma once

#include "effectengine/media/ClipJob.h"

namespace media {

/// What stands at a moment: the first clip's picture, the second one's, or both during the transition.
struct JoinedIn {
    enum class Part { first, both, second };
    Part part = Part::first;
    std::optional<host::Image> first;
    std::optional<host::Image> second;
    std::int64_t time = 0; ///< in the joined clip's time base, from its start
    std::int64_t duration = 0;
};

/// Before the transition come the first clip's frames at their times, during it both at the first one's
/// times, after it the second clip's at theirs. A clip that has ended shows its last frame on.
class JoinedFeed {
public:
    /// @param size        of the pictures
    /// @param secondSize  not larger: what the second clip takes of their middle
    /// @param unit      of all times
    /// @param at        when the second clip begins
    /// @param duration  of the transition
    JoinedFeed(ClipReader& first, ClipReader& second, pixels::Extent size, pixels::Extent secondSize,
        AVRational unit, std::int64_t at, std::int64_t duration);

    /// False after the last frame. Throws what the readers throw, and when a stop is asked.
    bool next(JoinedIn& in);

private:
    /// One clip with a frame ahead.
    struct Side {
        ClipReader& reader;
        pixels::Extent size; ///< in the middle of the pictures
        ToPicture convert{reader.info(), size.width, size.height};
        Frame shown = makeFrame();
        Frame ahead = makeFrame();
        bool hasAhead = false;

        std::int64_t timeAhead(AVRational unit) const;
        /// The frame ahead becomes the one that is shown.
        void advance();
        /// Writes the middle of the image, of this side's size.
        void picture(const host::Image& image);
    };

    bool nextOfSecond(JoinedIn& in);

    Side first_;
    Side second_;
    AVRational unit_;
    std::int64_t at_;
    std::int64_t end_;  ///< of the transition
    std::int64_t step_; ///< between frames of a clip that has ended
    std::int64_t time_ = -1;
    bool firstIsOver_ = false;
};

} // namespace media
