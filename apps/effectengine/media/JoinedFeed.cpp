// The frames of both clips in the order of their times.
#include "effectengine/media/JoinedFeed.h"

#include "effectengine/interruption.h"
#include "hosting/imageView.h"

#include <algorithm>

namespace tool::media {

std::int64_t JoinedFeed::Side::timeAhead(AVRational unit) const
{
    return av_rescale_q(ahead->pts - reader.info().start, reader.info().timeBase, unit);
}

void JoinedFeed::Side::advance()
{
    stopIfAsked();
    std::swap(shown, ahead);
    hasAhead = reader.next(*ahead);
}

void JoinedFeed::Side::picture(const host::Image& image)
{
    const pixels::View whole = viewOf(image);
    const int left = (whole.width() - size.width) / 2;
    const int bottom = (whole.height() - size.height) / 2;
    convert.convert(*shown, whole.part(left, bottom, size));
}

JoinedFeed::JoinedFeed(ClipReader& first, ClipReader& second, pixels::Extent size, pixels::Extent secondSize,
    AVRational unit, std::int64_t at, std::int64_t duration)
    : first_{first, size},
      second_{second, secondSize},
      unit_(unit),
      at_(at),
      end_(at + duration),
      step_(std::max<std::int64_t>(1, av_rescale_q(1, av_inv_q(first.info().frameRate), unit)))
{
    first_.hasAhead = first.next(*first_.ahead);
    second_.advance();
    second_.advance(); // shows its first frame until the next one's time has come
}

bool JoinedFeed::next(ClipFrame& in)
{
    in.place.number = number_++;
    if (firstIsOver_)
        return nextOfSecond(in);
    if (first_.hasAhead) {
        time_ = std::max(time_ + 1, first_.timeAhead(unit_));
        first_.advance();
        in.place.duration = av_rescale_q(first_.shown->pkt_duration, first_.reader.info().timeBase, unit_);
    } else {
        time_ += step_;
        in.place.duration = step_;
    }
    if (time_ >= end_) {
        firstIsOver_ = true;
        return nextOfSecond(in);
    }
    in.place.time = time_;
    first_.picture(in.pictures[0]);
    in.present = {true, time_ >= at_};
    if (in.present[1]) {
        while (second_.hasAhead && second_.timeAhead(unit_) <= time_ - at_)
            second_.advance();
        second_.picture(in.pictures[1]);
    }
    return true;
}

bool JoinedFeed::nextOfSecond(ClipFrame& in)
{
    while (second_.hasAhead) {
        in.place.time = at_ + second_.timeAhead(unit_);
        second_.advance();
        if (in.place.time < end_)
            continue;
        in.place.duration = av_rescale_q(second_.shown->pkt_duration, second_.reader.info().timeBase, unit_);
        in.present = {false, true};
        second_.picture(in.pictures[1]);
        return true;
    }
    return false;
}

} // namespace tool::media
