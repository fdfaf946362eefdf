// Sound from a filter graph through an encoder into packets.
#include "effectengine/media/EncodedTrack.h"

#include <algorithm>
#include <stdexcept>

namespace tool::media {

namespace {

constexpr int kBitsPerChannel = 96000;
constexpr int kUsualRate = 48000;

template <class Value, class End> bool offers(const Value* choices, End end, Value wanted)
{
    if (!choices)
        return true;
    for (; *choices != end; ++choices)
        if (*choices == wanted)
            return true;
    return false;
}

const AVCodec& encoderFor(const AVOutputFormat& container, const std::filesystem::path& outputName)
{
    AVCodecID id = av_guess_codec(&container, nullptr, outputName.c_str(), nullptr, AVMEDIA_TYPE_AUDIO);
    if (!avcodec_find_encoder(id)
        && avformat_query_codec(&container, AV_CODEC_ID_AAC, FF_COMPLIANCE_NORMAL) == 1)
        id = AV_CODEC_ID_AAC; // what telephones once wrote has no encoder here
    const AVCodec* codec = nullptr;
    if (id == AV_CODEC_ID_OPUS)
        codec = avcodec_find_encoder_by_name("libopus"); // the built-in one is experimental
    if (id == AV_CODEC_ID_VORBIS)
        codec = avcodec_find_encoder_by_name("libvorbis");
    if (!codec)
        codec = avcodec_find_encoder(id);
    if (!codec)
        throw std::runtime_error("no encoder for sound in " + outputName.string());
    return *codec;
}

// The channel layouts that the encoder takes, as an option of a filter; empty when it takes any.
std::string layoutsOf(const AVCodec& codec)
{
    std::string names;
    for (const AVChannelLayout* layout = codec.ch_layouts; layout && layout->nb_channels; ++layout) {
        char name[128];
        if (av_channel_layout_describe(layout, name, sizeof name) > 0)
            names += (names.empty() ? "" : "|") + std::string(name);
    }
    return names;
}

} // namespace

AVFilterContext* addFilter(AVFilterGraph& graph, const char* kind, const char* name,
    const std::vector<std::pair<std::string, std::string>>& options)
{
    const AVFilter* const filter = avfilter_get_by_name(kind);
    AVFilterContext* const context = filter ? avfilter_graph_alloc_filter(&graph, filter, name) : nullptr;
    if (!context)
        throw std::runtime_error(std::string("no filter ") + kind);
    Dictionary values;
    for (const auto& [key, value] : options)
        values.set(key, value);
    require(avfilter_init_dict(context, values.address()), kind);
    return context;
}

void connect(AVFilterContext* from, AVFilterContext* to, unsigned input)
{
    require(avfilter_link(from, 0, to, input), "filter connection");
}

EncodedTrack::EncodedTrack(const Build& build, const AVOutputFormat& container,
    const std::filesystem::path& outputName, TrackMarks marks)
    : SideTrack(std::move(marks)),
      graph_(avfilter_graph_alloc()),
      frame_(makeFrame())
{
    const AVCodec& codec = encoderFor(container, outputName);
    encoder_.reset(avcodec_alloc_context3(&codec));
    if (!graph_ || !encoder_)
        throw std::bad_alloc();

    const AVSampleFormat format = codec.sample_fmts ? codec.sample_fmts[0] : AV_SAMPLE_FMT_FLTP;
    AVFilterContext* const source = build(*graph_);
    std::vector<std::pair<std::string, std::string>> wanted{{"sample_fmts", av_get_sample_fmt_name(format)}};
    if (!offers(codec.supported_samplerates, 0, kUsualRate) || codec.id == AV_CODEC_ID_OPUS
        || std::string_view(container.name).starts_with("mxf")) // which holds no other rate
        wanted.push_back({"sample_rates",
            std::to_string(codec.supported_samplerates ? codec.supported_samplerates[0] : kUsualRate)});
    if (const std::string layouts = layoutsOf(codec); !layouts.empty())
        wanted.push_back({"channel_layouts", layouts});
    AVFilterContext* const shape = addFilter(*graph_, "aformat", "shape", wanted);
    sink_ = addFilter(*graph_, "abuffersink", "sink", {});
    connect(source, shape);
    connect(shape, sink_);
    require(avfilter_graph_config(graph_.get(), nullptr), "sound filters");

    encoder_->sample_fmt = format;
    encoder_->sample_rate = av_buffersink_get_sample_rate(sink_);
    require(av_buffersink_get_ch_layout(sink_, &encoder_->ch_layout), "channels");
    encoder_->time_base = {1, encoder_->sample_rate};
    encoder_->bit_rate = std::int64_t(kBitsPerChannel) * encoder_->ch_layout.nb_channels;
    if (container.flags & AVFMT_GLOBALHEADER)
        encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    require(avcodec_open2(encoder_.get(), &codec, nullptr), "sound encoder");
    if (!(codec.capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE))
        av_buffersink_set_frame_size(sink_, unsigned(encoder_->frame_size));
    parameters_ = parametersOf(*encoder_);
}

bool EncodedTrack::next(AVPacket& packet)
{
    while (true) {
        av_packet_unref(&packet);
        const int received = avcodec_receive_packet(encoder_.get(), &packet);
        if (received >= 0)
            return true;
        if (received == AVERROR_EOF)
            return false;
        require(received == AVERROR(EAGAIN) ? 0 : received, "sound encoder");
        av_frame_unref(frame_.get());
        const int filtered = av_buffersink_get_frame(sink_, frame_.get());
        if (filtered == AVERROR(EAGAIN) && feed_) {
            if (!feed_())
                return false;
            continue;
        }
        const bool ended = filtered == AVERROR_EOF;
        require(ended ? 0 : filtered, "sound filters");
        if (!ended)
            frame_->pts = av_rescale_q(frame_->pts, av_buffersink_get_time_base(sink_), encoder_->time_base);
        require(avcodec_send_frame(encoder_.get(), ended ? nullptr : frame_.get()), "sound encoder");
    }
}

} // namespace tool::media
