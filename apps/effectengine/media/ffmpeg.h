// FFmpeg's libraries with owning pointers and C++ errors.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/hash.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/parseutils.h>
#include <libavutil/pixdesc.h>
#include <libavutil/tx.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace tool::media {

/// What an input reads that is not a file of FFmpeg's own. It is the `opaque` of the input and of its stream,
/// and both go with the input. Streams of other inputs (pipes) belong to who made them.
class InputBytes {
public:
    virtual ~InputBytes() = default;
};

namespace detail {

/// A deleter by those functions of the libraries that take the address of the handle.
template <auto free> struct FreeByAddress {
    template <class Handle> void operator()(Handle* handle) const { free(&handle); }
};

struct CloseInput {
    void operator()(AVFormatContext* context) const;
};

/// Frees a stream that reads InputBytes, with them.
void freeBytes(AVIOContext* stream);

struct CloseOutput {
    void operator()(AVFormatContext* context) const
    {
        if (!(context->flags & AVFMT_FLAG_CUSTOM_IO)) // else its owner closes it
            avio_closep(&context->pb);
        avformat_free_context(context);
    }
};

struct FreeScaler {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

} // namespace detail

using Input = std::unique_ptr<AVFormatContext, detail::CloseInput>;
using Output = std::unique_ptr<AVFormatContext, detail::CloseOutput>;
using Codec = std::unique_ptr<AVCodecContext, detail::FreeByAddress<avcodec_free_context>>;
using Frame = std::unique_ptr<AVFrame, detail::FreeByAddress<av_frame_free>>;
using Packet = std::unique_ptr<AVPacket, detail::FreeByAddress<av_packet_free>>;
using Parameters = std::unique_ptr<AVCodecParameters, detail::FreeByAddress<avcodec_parameters_free>>;
using Filters = std::unique_ptr<AVFilterGraph, detail::FreeByAddress<avfilter_graph_free>>;
using Scaler = std::unique_ptr<SwsContext, detail::FreeScaler>;

/// Options for a function that opens something; it takes those that it knows out of them.
class Dictionary {
public:
    Dictionary() = default;
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;
    ~Dictionary() { av_dict_free(&entries_); }

    void set(const std::string& key, const std::string& value)
    {
        av_dict_set(&entries_, key.c_str(), value.c_str(), 0);
    }
    AVDictionary** address() { return &entries_; }
    /// The first option that was not taken, or empty.
    std::string leftOver() const
    {
        const AVDictionaryEntry* const entry = av_dict_get(entries_, "", nullptr, AV_DICT_IGNORE_SUFFIX);
        return entry ? entry->key : "";
    }

private:
    AVDictionary* entries_ = nullptr;
};

/// An empty frame and an empty packet. Throw std::bad_alloc.
Frame makeFrame();
Packet makePacket();

/// A copy of codec parameters, and those of an open encoder. Throw std::bad_alloc.
Parameters copyOf(const AVCodecParameters& parameters);
Parameters parametersOf(const AVCodecContext& encoder);

/// Whether a pixel may be transparent, by itself or by a palette.
bool hasAlpha(AVPixelFormat format);

/// Whether numbers stand for light of a high dynamic range: PQ or HLG.
bool isHighRange(AVColorTransferCharacteristic transfer);

/// The meaning of a negative result, for people who need not know the library.
std::string errorText(int result);

/// For results whose failure neither an input nor a disk causes: throws std::runtime_error for a negative
/// one.
/// @return the result
int require(int result, const char* what);

} // namespace tool::media
