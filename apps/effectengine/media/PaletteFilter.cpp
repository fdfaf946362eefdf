// The filter graph that makes a palette of a frame and applies it to the frame.
#include "effectengine/media/PaletteFilter.h"

#include "effectengine/media/EncodedTrack.h"

namespace tool::media {

namespace {

std::string ratio(AVRational r) { return std::to_string(r.num) + "/" + std::to_string(r.den); }

} // namespace

PaletteFilter::PaletteFilter(const FrameShape& shape) : graph_(avfilter_graph_alloc())
{
    if (!graph_)
        throw std::bad_alloc();
    source_ = addFilter(*graph_, "buffer", "source",
        {{"width", std::to_string(shape.width)}, {"height", std::to_string(shape.height)},
            {"pix_fmt", "bgra"}, {"time_base", ratio(shape.timeBase)}});
    AVFilterContext* const split = addFilter(*graph_, "split", nullptr, {});
    AVFilterContext* const palette = addFilter(*graph_, "palettegen", nullptr, {{"stats_mode", "single"}});
    AVFilterContext* const use = addFilter(*graph_, "paletteuse", nullptr, {{"new", "1"}});
    sink_ = addFilter(*graph_, "buffersink", "sink", {});
    connect(source_, split);
    connect(split, use, 0);
    require(avfilter_link(split, 1, palette, 0), "filter connection");
    connect(palette, use, 1);
    connect(use, sink_);
    require(avfilter_graph_config(graph_.get(), nullptr), "palette filters");
}

void PaletteFilter::apply(AVFrame& frame)
{
    require(av_buffersrc_add_frame_flags(source_, &frame, AV_BUFFERSRC_FLAG_PUSH), "palette filters");
    require(av_buffersink_get_frame(sink_, &frame), "palette filters");
}

} // namespace tool::media
