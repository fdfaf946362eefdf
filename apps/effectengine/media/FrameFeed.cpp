// The choice of frames that are read, seen by effects, and shown.
#include "effectengine/media/FrameFeed.h"

#include "effectengine/interruption.h"
#include "hosting/imageView.h"

#include <algorithm>

namespace tool::media {

FrameFeed::FrameFeed(ClipReader& reader, pixels::Extent size, const ClipPart& part, long long preRoll)
    : reader_(reader),
      convert_(reader.info(), size.width, size.height),
      part_(part),
      preRoll_(preRoll == kAllFrames ? FrameRange::kOpen : preRoll),
      begun_(part.times.start <= 0)
{
}

void FrameFeed::leaveOut(std::set<long long> frames) { leftOut_ = std::move(frames); }

// The first frame from this one on that is shown, which may stand beyond the range. Asked for ascending
// frames it looks at each that is left out but once.
long long FrameFeed::wantedFrom(long long frame)
{
    if (wanted_ >= frame)
        return wanted_;
    wanted_ = std::max(frame, part_.frames.first);
    for (auto left = leftOut_.lower_bound(wanted_); left != leftOut_.end() && *left == wanted_; ++left)
        ++wanted_;
    return wanted_;
}

// Whether effects must see the frame: it is shown itself, or a shown one follows within the pre-roll. Of
// times nobody knows which frame they begin with, so effects with a history see all before it.
bool FrameFeed::isSeen(long long frame)
{
    if (!begun_)
        return preRoll_ > 0;
    const long long wanted = wantedFrom(frame);
    return wanted <= part_.frames.last && wanted - frame <= preRoll_;
}

bool FrameFeed::next(ClipFrame& in)
{
    if (!started_) {
        const long long first = wantedFrom(0);
        reader_.skipTo(preRoll_ >= first ? 0 : first - preRoll_);
        started_ = true;
    }
    do {
        stopIfAsked();
        if (readBeyond_ || wantedFrom(reader_.index() + 1) > part_.frames.last || !reader_.next(*in.frame))
            return false;
        const auto reached = [&](double seconds) {
            return isAtOrAfter(in.frame->pts, reader_.firstTime(), reader_.info(), seconds);
        };
        begun_ = begun_ || reached(part_.times.start);
        readBeyond_ = reached(part_.times.end);
        if (readBeyond_)
            return false;
    } while (!isSeen(reader_.index()));
    in.place = {reader_.index(), in.frame->pts, in.frame->pts - reader_.firstTime(), in.frame->pkt_duration,
        reader_.damaged()};
    in.shown = begun_ && wantedFrom(reader_.index()) == reader_.index();
    convert_.convert(*in.frame, viewOf(in.pictures.front()));
    return true;
}

} // namespace tool::media
