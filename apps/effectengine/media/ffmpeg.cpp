// Allocation, error texts and other helpers for FFmpeg's libraries.
#include "effectengine/media/ffmpeg.h"

#include <new>
#include <stdexcept>

namespace tool::media {

void detail::freeBytes(AVIOContext* stream)
{
    delete static_cast<InputBytes*>(stream->opaque);
    av_freep(&stream->buffer);
    avio_context_free(&stream);
}

void detail::CloseInput::operator()(AVFormatContext* context) const
{
    AVIOContext* const own = context->opaque ? context->pb : nullptr;
    avformat_close_input(&context);
    if (own)
        freeBytes(own);
}

Frame makeFrame()
{
    Frame frame(av_frame_alloc());
    if (!frame)
        throw std::bad_alloc();
    return frame;
}

Packet makePacket()
{
    Packet packet(av_packet_alloc());
    if (!packet)
        throw std::bad_alloc();
    return packet;
}

namespace {

Parameters makeParameters()
{
    Parameters parameters(avcodec_parameters_alloc());
    if (!parameters)
        throw std::bad_alloc();
    return parameters;
}

} // namespace

Parameters copyOf(const AVCodecParameters& parameters)
{
    Parameters copy = makeParameters();
    if (avcodec_parameters_copy(copy.get(), &parameters) < 0)
        throw std::bad_alloc();
    return copy;
}

Parameters parametersOf(const AVCodecContext& encoder)
{
    Parameters parameters = makeParameters();
    if (avcodec_parameters_from_context(parameters.get(), &encoder) < 0)
        throw std::bad_alloc();
    return parameters;
}

bool hasAlpha(AVPixelFormat format)
{
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    return descriptor && (descriptor->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL));
}

bool isHighRange(AVColorTransferCharacteristic transfer)
{
    return transfer == AVCOL_TRC_SMPTE2084 || transfer == AVCOL_TRC_ARIB_STD_B67;
}

std::string errorText(int result)
{
    switch (result) {
    case AVERROR_INVALIDDATA:
        return "its data is damaged, or of a kind that is not known here";
    case AVERROR_PATCHWELCOME:
    case AVERROR(ENOSYS):
        return "FFmpeg's libraries cannot do this";
    case AVERROR(EINVAL):
        return "FFmpeg's libraries take no such thing";
    default:
        break;
    }
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(result, text, sizeof text);
    return text;
}

int require(int result, const char* what)
{
    if (result < 0)
        throw std::runtime_error(std::string("clips: failed at the ") + what + ": " + errorText(result));
    return result;
}

} // namespace tool::media
