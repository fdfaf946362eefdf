// The choice of frames that are read, seen by effects, and shown.
#include "effectengine/media/FrameFeed.h"

#include "effectengine/interruption.h"
#include "hosting/imageView.h"

namespace tool::media {

FrameFeed::FrameFeed(ClipReader& reader, pixels::Extent size, FrameRange range, long long preRoll)
    : reader_(reader),
      convert_(reader.info(), size.width, size.height),
      range_(range),
      preRoll_(preRoll == kAllFrames ? FrameRange::kOpen : preRoll)
{
}

void FrameFeed::showOnly(std::set<long long> frames) { only_ = std::move(frames); }

bool FrameFeed::shown(long long frame) const
{
    return range_.holds(frame) && (!only_ || only_->contains(frame));
}

// Whether effects must see the frame: it is shown itself, or a shown one follows within the pre-roll.
bool FrameFeed::seen(long long frame) const
{
    const long long reach = preRoll_ >= FrameRange::kOpen - frame ? FrameRange::kOpen : frame + preRoll_;
    if (!only_)
        return reach >= range_.first && frame <= range_.last;
    const auto next = only_->lower_bound(std::max(frame, range_.first));
    return next != only_->end() && *next <= reach;
}

bool FrameFeed::next(ClipFrame& in)
{
    if (!started_) {
        const long long first = only_ && !only_->empty() ? *only_->begin() : range_.first;
        reader_.skipTo(preRoll_ >= first ? 0 : first - preRoll_);
        started_ = true;
    }
    const bool nothingLeft = only_ && (only_->empty() || reader_.index() >= *only_->rbegin());
    if (nothingLeft || reader_.index() >= range_.last)
        return false;
    do {
        stopIfAsked();
        if (!reader_.next(*in.frame))
            return false;
    } while (!seen(reader_.index()));
    in.place = {reader_.index(), in.frame->pts, in.frame->pts - reader_.firstTime(), in.frame->pkt_duration,
        reader_.damaged()};
    in.shown = shown(reader_.index());
    convert_.convert(*in.frame, viewOf(in.pictures.front()));
    return true;
}

} // namespace tool::media
