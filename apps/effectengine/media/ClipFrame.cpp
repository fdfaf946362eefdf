// Times of frames as graphs take them.
#include "effectengine/media/ClipFrame.h"

namespace tool::media {

FrameTime timeOf(const FramePlace& place, const ClipInfo& clip)
{
    return {.seconds = double(place.sinceFirst) * av_q2d(clip.timeBase),
        .frameRate = clip.rate(),
        .total = clip.duration};
}

} // namespace tool::media
