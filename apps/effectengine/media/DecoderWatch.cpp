// The callback for the library's log, which notes errors by decoder and packet.
#include "effectengine/media/DecoderWatch.h"

namespace tool::media {

void DecoderWatch::listen() { av_log_set_callback(hear); }

void DecoderWatch::mark(AVCodecContext& decoder, const AVPacket& packet)
{
    decoder.reordered_opaque = packet.pts; // reaches the thread that decodes the packet
}

bool DecoderWatch::complainedAt(std::int64_t time) const
{
    const std::lock_guard lock(mutex_);
    return times_.contains(time);
}

bool DecoderWatch::complainedSince(std::int64_t time) const
{
    const std::lock_guard lock(mutex_);
    return times_.lower_bound(time) != times_.end();
}

void DecoderWatch::forget()
{
    const std::lock_guard lock(mutex_);
    times_.clear();
}

void DecoderWatch::hear(void* source, int level, const char*, va_list)
{
    constexpr int kLevels = 0xff; // the bits above name a colour
    if (!source || (level & kLevels) > AV_LOG_ERROR || *static_cast<AVClass**>(source) != avcodec_get_class())
        return;
    const auto& decoder = *static_cast<const AVCodecContext*>(source);
    if (decoder.codec_type != AVMEDIA_TYPE_VIDEO || !decoder.opaque || !av_codec_is_decoder(decoder.codec))
        return;
    if (decoder.reordered_opaque == AV_NOPTS_VALUE)
        return;
    auto& watch = *static_cast<DecoderWatch*>(decoder.opaque);
    const std::lock_guard lock(watch.mutex_);
    watch.times_.insert(decoder.reordered_opaque);
}

} // namespace tool::media
