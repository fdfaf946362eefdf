// FFmpeg's filters, each in a graph of its own that frames are pushed through.
#include "compare/Peer.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <stdexcept>

namespace compare {

namespace {

struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using Frame = std::unique_ptr<AVFrame, FreeFrame>;

struct FreeGraph {
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
};

int checked(int answer, const std::string& what)
{
    if (answer < 0)
        throw std::runtime_error("FFmpeg: " + what + " fails");
    return answer;
}

// The pixels in another layout.
Frame converted(std::span<const unsigned char> pixels, host::FrameSize size, AVPixelFormat format)
{
    Frame frame(av_frame_alloc());
    frame->format = format;
    frame->width = int(size.width);
    frame->height = int(size.height);
    checked(av_frame_get_buffer(frame.get(), 0), "allocating a frame");
    SwsContext* const scaler = sws_getContext(frame->width, frame->height, AV_PIX_FMT_BGRA, frame->width,
        frame->height, format, SWS_POINT, nullptr, nullptr, nullptr);
    if (!scaler)
        throw std::runtime_error("FFmpeg: there is no way to another layout");
    const unsigned char* const from[] = {pixels.data()};
    const int stride[] = {int(size.width) * 4};
    sws_scale(scaler, from, stride, 0, frame->height, frame->data, frame->linesize);
    sws_freeContext(scaler);
    return frame;
}

class Graph {
public:
    Graph(
        const Frames& frames, const std::string& filters, unsigned inputs, AVPixelFormat format, int threads)
        : graph_(avfilter_graph_alloc()),
          received_(av_frame_alloc())
    {
        graph_->nb_threads = threads;
        const std::string size = std::to_string(frames.size.width) + "x" + std::to_string(frames.size.height);
        std::string text;
        for (unsigned i = 0; i < inputs; ++i) {
            frames_.push_back(converted(frames.pixels[i], frames.size, format));
            text += "buffer@" + std::to_string(i) + "=video_size=" + size
                + ":pix_fmt=" + av_get_pix_fmt_name(format) + ":time_base=1/25[" + std::to_string(i) + "];";
        }
        for (unsigned i = 0; i < inputs; ++i)
            text += "[" + std::to_string(i) + "]";
        text += filters + ",buffersink@out";
        AVFilterInOut* ins = nullptr;
        AVFilterInOut* outs = nullptr;
        checked(avfilter_graph_parse2(graph_.get(), text.c_str(), &ins, &outs), filters);
        checked(avfilter_graph_config(graph_.get(), nullptr), filters);
        for (unsigned i = 0; i < inputs; ++i)
            sources_.push_back(
                avfilter_graph_get_filter(graph_.get(), ("buffer@" + std::to_string(i)).c_str()));
        sink_ = avfilter_graph_get_filter(graph_.get(), "buffersink@out");
        for (unsigned i = 0; i < graph_->nb_filters; ++i)
            if (std::string_view(graph_->filters[i]->filter->name) == "scale")
                throw std::runtime_error("FFmpeg: " + filters + " takes no " + av_get_pix_fmt_name(format));
    }

    void once()
    {
        for (std::size_t i = 0; i < sources_.size(); ++i) {
            frames_[i]->pts = time_;
            checked(av_buffersrc_add_frame_flags(sources_[i], frames_[i].get(), AV_BUFFERSRC_FLAG_KEEP_REF),
                "feeding a frame");
        }
        ++time_;
        checked(av_buffersink_get_frame(sink_, received_.get()), "filtering a frame");
        av_frame_unref(received_.get());
    }

private:
    std::unique_ptr<AVFilterGraph, FreeGraph> graph_;
    std::vector<Frame> frames_;
    std::vector<AVFilterContext*> sources_;
    AVFilterContext* sink_ = nullptr;
    Frame received_;
    long long time_ = 0;
};

} // namespace

std::vector<Peer> ffmpegPeers(const Frames& frames, int threads)
{
    std::vector<Peer> peers;
    const auto add = [&](const char* effect, const char* call, const std::string& options,
                         AVPixelFormat format, unsigned inputs = 1) {
        const std::string filter = std::string(call).substr(0, std::string_view(call).find(','));
        const auto graph = std::make_shared<Graph>(frames, filter + options, inputs, format, threads);
        peers.push_back({effect, "FFmpeg", call, [graph] { graph->once(); }});
    };
    constexpr auto kPacked = AV_PIX_FMT_BGRA;
    constexpr auto kPlanar = AV_PIX_FMT_GBRAP;
    std::string sharpen;
    for (const char* const plane : {"0", "1", "2"})
        sharpen += std::string(sharpen.empty() ? "=" : ":") + plane + "m=-1 -1 -1 -1 12 -1 -1 -1 -1";
    add("am-gray-scale", "colorchannelmixer", "=.3:.59:.11:0:.3:.59:.11:0:.3:.59:.11", kPacked);
    add("am-negative", "negate", "=components=r+g+b", kPlanar);
    add("am-solarize", "lutrgb", "=r=val*val/255:g=val*val/255:b=val*val/255", kPacked);
    add("am-flip-lr", "hflip", "", kPacked);
    add("equalize", "histeq", "=strength=1", kPacked);
    add("hue-shift", "huesaturation", "=hue=95", kPacked);
    add("cube-lut", "lut3d, tetrahedral", "=interp=tetrahedral:file=" + exampleTable(), kPacked);
    add("blur", "gblur", "=sigma=" + std::to_string(blurDeviation(frames.size)), kPlanar);
    add("am-blur2", "avgblur, 3 x 3", "=sizeX=1", kPlanar);
    add("am-sharp", "convolution, 3 x 3", sharpen, kPlanar);
    add("am-mosaic", "pixelize", "=16:16", kPlanar);
    add("fade", "blend, normal", "=all_mode=normal:all_opacity=0.4", kPlanar, 2);
    add("am-soft-light", "blend, soft light", "=all_mode=softlight", kPlanar, 2);
    return peers;
}

} // namespace compare
