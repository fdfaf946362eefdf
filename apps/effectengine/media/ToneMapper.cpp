// Light is made linear, brought to the primaries of BT.709, compressed, and coded again.
#include "effectengine/media/ToneMapper.h"

#include "effectengine/ToolError.h"
#include "effectengine/media/ClipNotes.h"
#include "effectengine/media/EncodedTrack.h"
#include "effectengine/media/yuvPixels.h"

#include <array>
#include <charconv>

extern "C" {
#include <libavutil/mastering_display_metadata.h>
}

namespace tool::media {

namespace {

constexpr double kWhite = 100; // candela a square metre
constexpr double kUsualBrightest = 10;

std::string number(int value) { return std::to_string(value); }

// Options are read with a point, whatever the locale.
std::string number(double value)
{
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.begin(), text.end(), value);
    return {text.begin(), end};
}

} // namespace

ToneMapper::ToneMapper(const ClipInfo& clip, bool deep) : clip_(clip), deep_(deep) { }

void ToneMapper::build(const AVFrame& frame)
{
    width_ = frame.width;
    height_ = frame.height;
    format_ = frame.format;
    const auto format = AVPixelFormat(format_);
    const bool rgb = av_pix_fmt_desc_get(format)->flags & AV_PIX_FMT_FLAG_RGB;
    colour_ = clip_.colour;
    if (colour_.range == AVCOL_RANGE_UNSPECIFIED)
        colour_.range = rgb ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    if (rgb)
        colour_.space = AVCOL_SPC_RGB;
    else if (!hasYuvMatrix(colour_.space))
        colour_.space = AVCOL_SPC_BT2020_NCL;
    if (colour_.primaries == AVCOL_PRI_UNSPECIFIED)
        colour_.primaries = AVCOL_PRI_BT2020;
    const bool alpha = hasAlpha(format);

    graph_.reset(avfilter_graph_alloc());
    if (!graph_)
        throw std::bad_alloc();
    graph_->nb_threads = 1; // pictures cut into slices would differ at the cuts
    source_ = addFilter(*graph_, "buffer", "source",
        {{"width", number(width_)}, {"height", number(height_)}, {"pix_fmt", av_get_pix_fmt_name(format)},
            {"time_base", "1/1"}});
    AVFilterContext* last = source_;
    const auto add = [&](const char* kind, const std::vector<std::pair<std::string, std::string>>& options) {
        AVFilterContext* const filter = addFilter(*graph_, kind, nullptr, options);
        connect(last, filter);
        last = filter;
    };
    add("zscale", {{"transfer", "linear"}, {"npl", number(kWhite)}});
    add("format", {{"pix_fmts", alpha ? "gbrapf32le" : "gbrpf32le"}});
    add("zscale", {{"primaries", "bt709"}});
    add("tonemap",
        {{"tonemap", nameOf(clip_.depth.toneMapping)}, {"desat", "0"}, {"peak", number(clip_.brightest)}});
    add("zscale", {{"transfer", "bt709"}, {"range", "full"}});
    add("format", {{"pix_fmts", deep_ ? (alpha ? "gbrap16le" : "gbrp16le") : (alpha ? "gbrap" : "gbrp")}});
    sink_ = addFilter(*graph_, "buffersink", "sink", {});
    connect(last, sink_);
    require(avfilter_graph_config(graph_.get(), nullptr), "tone mapping");
}

const AVFrame& ToneMapper::map(const AVFrame& frame)
{
    if (!graph_ || frame.width != width_ || frame.height != height_ || frame.format != format_)
        build(frame);
    av_frame_unref(mapped_.get());
    require(av_frame_ref(mapped_.get(), &frame), "frame");
    // A frame's own marks may be missing where its neighbours have them; the clip's hold for all.
    for (const AVFrameSideDataType type :
        {AV_FRAME_DATA_MASTERING_DISPLAY_METADATA, AV_FRAME_DATA_CONTENT_LIGHT_LEVEL})
        av_frame_remove_side_data(mapped_.get(), type);
    mapped_->color_range = colour_.range;
    mapped_->colorspace = colour_.space;
    mapped_->color_primaries = colour_.primaries;
    mapped_->color_trc = colour_.transfer;
    require(av_buffersrc_add_frame_flags(source_, mapped_.get(), AV_BUFFERSRC_FLAG_PUSH), "tone mapping");
    av_frame_unref(mapped_.get());
    require(av_buffersink_get_frame(sink_, mapped_.get()), "tone mapping");
    return *mapped_;
}

void checkToneMapping()
{
    for (const char* const filter : {"zscale", "tonemap"})
        if (!avfilter_get_by_name(filter))
            throw ToolError(ExitCode::usage,
                std::string("--tonemap needs FFmpeg's filter ") + filter
                    + ", which this machine's libraries lack");
}

double brightestOf(const ClipSource& clip, const AVStream& pictures)
{
    double mastered = 0;
    for (const ClipNotes::Description& one : descriptionsOf(clip, pictures)) {
        if (one.type == AV_PKT_DATA_CONTENT_LIGHT_LEVEL
            && one.bytes.size() >= sizeof(AVContentLightMetadata)) {
            const auto& light = *reinterpret_cast<const AVContentLightMetadata*>(one.bytes.data());
            if (light.MaxCLL > 0)
                return light.MaxCLL / kWhite;
        }
        if (one.type == AV_PKT_DATA_MASTERING_DISPLAY_METADATA
            && one.bytes.size() >= sizeof(AVMasteringDisplayMetadata)) {
            const auto& display = *reinterpret_cast<const AVMasteringDisplayMetadata*>(one.bytes.data());
            if (display.has_luminance)
                mastered = av_q2d(display.max_luminance) / kWhite;
        }
    }
    return mastered > 0 ? mastered : kUsualBrightest;
}

} // namespace tool::media
