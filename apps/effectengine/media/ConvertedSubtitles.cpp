// Each title through decoder and encoder; its time and duration stay.
#include "effectengine/media/ConvertedSubtitles.h"

#include "effectengine/media/openClip.h"

#include <cstring>

namespace tool::media {

namespace {

constexpr int kLargestTitle = 1 << 20; // bytes

/// A decoded title.
struct Title {
    Title() = default;
    Title(const Title&) = delete;
    Title& operator=(const Title&) = delete;
    ~Title() { avsubtitle_free(&subtitle); }
    AVSubtitle subtitle{};
};

AVCodecID textOf(const AVOutputFormat& container)
{
    if (isQuickTimeKind(container))
        return AV_CODEC_ID_MOV_TEXT;
    const std::string_view name = container.name;
    return name == "matroska" ? AV_CODEC_ID_SUBRIP : name == "webm" ? AV_CODEC_ID_WEBVTT : AV_CODEC_ID_NONE;
}

} // namespace

const AVCodec* textEncoderFor(const AVStream& subtitles, const AVOutputFormat& container)
{
    const AVCodecDescriptor* const kind = avcodec_descriptor_get(subtitles.codecpar->codec_id);
    if (!kind || !(kind->props & AV_CODEC_PROP_TEXT_SUB) || !avcodec_find_decoder(kind->id))
        return nullptr;
    const AVCodecID text = textOf(container);
    return text == AV_CODEC_ID_NONE ? nullptr : avcodec_find_encoder(text);
}

ConvertedSubtitles::ConvertedSubtitles(std::unique_ptr<CopiedTrack> source, const std::filesystem::path& clip,
    const AVCodec& encoder, const AVCodecParameters& pictures)
    : SideTrack(source->marks()),
      source_(std::move(source)),
      decoder_(openDecoder(source_->stream(), clip, nullptr)),
      encoder_(avcodec_alloc_context3(&encoder))
{
    if (!encoder_)
        throw std::bad_alloc();
    encoder_->time_base = timeBase();
    encoder_->width = pictures.width;
    encoder_->height = pictures.height;
    if (decoder_->subtitle_header) {
        const auto size = std::size_t(decoder_->subtitle_header_size);
        encoder_->subtitle_header = static_cast<std::uint8_t*>(av_mallocz(size + 1)); // the encoder frees it
        if (!encoder_->subtitle_header)
            throw std::bad_alloc();
        std::memcpy(encoder_->subtitle_header, decoder_->subtitle_header, size);
        encoder_->subtitle_header_size = int(size);
    }
    require(avcodec_open2(encoder_.get(), &encoder, nullptr), "encoder of subtitles");
    parameters_ = parametersOf(*encoder_);
}

bool ConvertedSubtitles::next(AVPacket& packet)
{
    while (source_->next(*stored_)) {
        Title title;
        int found = 0;
        const std::int64_t stored = stored_->pts;
        if (stored == AV_NOPTS_VALUE
            || avcodec_decode_subtitle2(decoder_.get(), &title.subtitle, &found, stored_.get()) < 0 || !found
            || title.subtitle.num_rects == 0)
            continue;
        AVSubtitle& subtitle = title.subtitle;
        const std::int64_t start =
            av_rescale_q(stored, source_->timeBase(), timeBase()) + subtitle.start_display_time;
        std::int64_t duration = av_rescale_q(stored_->duration, source_->timeBase(), timeBase());
        if (duration <= 0)
            duration = std::int64_t(subtitle.end_display_time) - subtitle.start_display_time;
        subtitle.pts = av_rescale_q(start, timeBase(), AV_TIME_BASE_Q);
        subtitle.start_display_time = 0;
        subtitle.end_display_time = std::uint32_t(duration);
        av_packet_unref(&packet);
        require(av_new_packet(&packet, kLargestTitle), "subtitles");
        const int size = avcodec_encode_subtitle(encoder_.get(), packet.data, packet.size, &subtitle);
        if (size <= 0)
            continue;
        av_shrink_packet(&packet, size);
        packet.pts = packet.dts = start;
        packet.duration = duration;
        packet.flags |= AV_PKT_FLAG_KEY;
        return true;
    }
    av_packet_unref(&packet);
    return false;
}

} // namespace tool::media
