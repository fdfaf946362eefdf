// Packets through a decoder into filters, as they come.
#include "effectengine/media/PassingSound.h"

#include "effectengine/ToolError.h"

#include <stdexcept>
#include <utility>

namespace tool::media {

namespace {

Codec decoderFor(const AVStream& stream)
{
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    Codec decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0)
        throw std::runtime_error("no decoder");
    decoder->pkt_timebase = stream.time_base;
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0 || decoder->sample_fmt == AV_SAMPLE_FMT_NONE
        || decoder->sample_rate <= 0 || decoder->ch_layout.nb_channels <= 0)
        throw std::runtime_error("cannot be decoded");
    // Some containers tell the number of channels alone.
    if (decoder->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&decoder->ch_layout, decoder->ch_layout.nb_channels);
    return decoder;
}

} // namespace

PassingSound::PassingSound(std::unique_ptr<SideTrack> packets, const AVStream& stream,
    const AVOutputFormat& container, const std::filesystem::path& outputName)
    : SideTrack(packets->marks()),
      packets_(std::move(packets)),
      decoder_(decoderFor(stream)),
      packet_(makePacket()),
      frame_(makeFrame()),
      encoded_([this](AVFilterGraph& graph) { return build(graph); }, container, outputName)
{
    encoded_.feedWith([this] { return feed(); });
}

AVFilterContext* PassingSound::build(AVFilterGraph& graph)
{
    char layout[128] = "";
    require(av_channel_layout_describe(&decoder_->ch_layout, layout, sizeof layout), "channels");
    const AVRational unit = packets_->timeBase();
    source_ = addFilter(graph, "abuffer", nullptr,
        {{"time_base", std::to_string(unit.num) + "/" + std::to_string(unit.den)},
            {"sample_rate", std::to_string(decoder_->sample_rate)},
            {"sample_fmt", av_get_sample_fmt_name(decoder_->sample_fmt)}, {"channel_layout", layout}});
    // Holes are filled, and what comes before time 0 is cut, so that the sound keeps its place.
    AVFilterContext* const placed =
        addFilter(graph, "aresample", nullptr, {{"async", "1"}, {"first_pts", "0"}});
    connect(source_, placed);
    return placed;
}

// Hands what has come to the filters; false when nothing has.
bool PassingSound::feed()
{
    if (flushed_)
        return false;
    if (packets_->next(*packet_)) {
        decode(packet_.get());
        av_packet_unref(packet_.get());
        return true;
    }
    if (packets_->mayGoOn())
        return false;
    if (packets_->next(*packet_)) { // the last ones came between the two questions
        decode(packet_.get());
        av_packet_unref(packet_.get());
        return true;
    }
    flushed_ = true;
    decode(nullptr);
    require(av_buffersrc_add_frame(source_, nullptr), "sound filters");
    return true;
}

// What cannot be decoded is silent, and so is sound of another rate or other channels than at the start.
void PassingSound::decode(const AVPacket* packet)
{
    (void)avcodec_send_packet(decoder_.get(), packet);
    while (avcodec_receive_frame(decoder_.get(), frame_.get()) >= 0) {
        if (frame_->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC
            && frame_->ch_layout.nb_channels == decoder_->ch_layout.nb_channels)
            require(av_channel_layout_copy(&frame_->ch_layout, &decoder_->ch_layout), "channels");
        frame_->pts = frame_->best_effort_timestamp;
        if (av_buffersrc_add_frame(source_, frame_.get()) < 0 && !std::exchange(warned_, true))
            tool::warn("sound from the pipe changes its rate or channels; what comes then is left out");
        av_frame_unref(frame_.get());
    }
}

} // namespace tool::media
