// Packets of one stream within a span, with their times moved to its start.
#include "effectengine/media/CopiedTrack.h"

#include "effectengine/media/openClip.h"

#include <algorithm>
#include <cmath>

namespace tool::media {

namespace {

/// Seconds. A longer title is one whose end is not known, and MP4 refuses it.
constexpr double kLongestTitle = 24 * 60 * 60;

std::int64_t ticks(double seconds, AVRational unit)
{
    return std::isfinite(seconds) ? std::llround(seconds / av_q2d(unit)) : INT64_MAX;
}

} // namespace

bool cutTitle(AVPacket& packet, AVRational unit, std::int64_t from, std::int64_t to)
{
    if (packet.pts == AV_NOPTS_VALUE)
        return false;
    if (double(packet.duration) * av_q2d(unit) > kLongestTitle)
        packet.duration = 0;
    const std::int64_t begin = std::max(packet.pts, from);
    const std::int64_t end = std::min(packet.pts + packet.duration, to);
    if (packet.duration > 0)
        packet.duration = std::max<std::int64_t>(end - begin, 0);
    packet.pts = packet.dts = begin;
    return true;
}

CopiedTrack::CopiedTrack(const std::filesystem::path& clip, int stream, Span span)
    : input_(openClip(clip)),
      stream_(stream)
{
    readOnly(*input_, stream);
    marks_ = marksOf(this->stream());
    titles_ = parameters().codec_type == AVMEDIA_TYPE_SUBTITLE;
    const AVRational unit = timeBase();
    const std::int64_t start =
        input_->start_time == AV_NOPTS_VALUE ? 0 : av_rescale_q(input_->start_time, AV_TIME_BASE_Q, unit);
    from_ = start + ticks(span.from, unit);
    to_ = std::isfinite(span.to) ? start + ticks(span.to, unit) : INT64_MAX;
    cut_ = span.from > 0;
    // A title may stand long before the part and last into it; a file that is not cut is read from the start.
    if (cut_ && !titles_)
        av_seek_frame(input_.get(), stream, from_, AVSEEK_FLAG_BACKWARD);
}

bool CopiedTrack::next(AVPacket& packet)
{
    while (true) {
        av_packet_unref(&packet);
        if (av_read_frame(input_.get(), &packet) < 0)
            return false;
        if (packet.stream_index != stream_)
            continue;
        const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
        // A stream that is not cut keeps all packets, those before time 0 too, which a decoder may need.
        if (time == AV_NOPTS_VALUE || (cut_ && time + packet.duration <= from_))
            continue;
        if (time >= to_)
            return false;
        if (titles_ && !cutTitle(packet, timeBase(), from_, to_))
            continue;
        for (std::int64_t* const t : {&packet.pts, &packet.dts})
            if (*t != AV_NOPTS_VALUE)
                *t -= from_;
        return true;
    }
}

} // namespace tool::media
