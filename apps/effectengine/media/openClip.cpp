// Opening of files and decoders, and the reasons for which they are refused.
#include "effectengine/media/openClip.h"

#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/AnimatedWebp.h"
#include "effectengine/media/threadShares.h"

#include <unistd.h>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

// The highest number at which numbered pictures may begin: parts of a clip carry the clip's numbers.
constexpr const char* kFirstPictureUpTo = "100000";

bool namesPictures(const fs::path& file)
{
    return av_filename_number_test(file.c_str()) && !fs::exists(file);
}

void checkReadable(const ClipSource& source)
{
    const fs::path file = source.path();
    const std::string name = source.name().string();
    if (namesPictures(file))
        return;
    if (!fs::exists(file))
        throw ToolError(ExitCode::missingInput, "no such file: " + name);
    if (fs::is_directory(file))
        throw ToolError(ExitCode::unreadable, "is a directory, not a clip: " + name);
    if (access(file.c_str(), R_OK) != 0)
        throw ToolError(ExitCode::unreadable, "no permission to read " + name);
}

// The named container, or null when the bytes are to tell.
const AVInputFormat* formatOf(const ClipSource& source)
{
    if (source.format.empty())
        return nullptr;
    const AVInputFormat* const format = av_find_input_format(source.format.c_str());
    if (!format || format->flags & AVFMT_NOFILE)
        throw ToolError(ExitCode::usage,
            "no input format \"" + source.format + "\" (y4m, nut, matroska, mpegts, rawvideo...)");
    return format;
}

void describeRawPictures(const ClipSource& source, Dictionary& options)
{
    int width = 0;
    int height = 0;
    AVRational rate{};
    if (av_parse_video_size(&width, &height, source.size.c_str()) < 0)
        throw ToolError(ExitCode::usage, "--size takes WIDTHxHEIGHT, not \"" + source.size + "\"");
    if (av_get_pix_fmt(source.pixelFormat.c_str()) == AV_PIX_FMT_NONE)
        throw ToolError(ExitCode::usage,
            "no pixel format \"" + source.pixelFormat + "\" (yuv420p, yuv422p, rgb24, bgra, gray...)");
    if (!source.pictureRate.empty() && av_parse_video_rate(&rate, source.pictureRate.c_str()) < 0)
        throw ToolError(ExitCode::usage,
            "--rate takes frames per second, such as 25 or 30000/1001, not \"" + source.pictureRate + "\"");
    options.set("video_size", source.size);
    options.set("pixel_format", source.pixelFormat);
    options.set("framerate", source.pictureRate.empty() ? "25" : source.pictureRate);
}

void findStreams(AVFormatContext& input, const ClipSource& source)
{
    if (avformat_find_stream_info(&input, nullptr) < 0)
        throw ToolError(ExitCode::unreadable, "cannot read " + source.name().string() + ": no streams found");
}

/// @param pipe  to read from; null for the file at the address
Input opened(const ClipSource& source, AVIOContext* pipe, const std::string& address)
{
    const std::string name = source.name().string();
    // A clip that refers to others (a playlist) may name only files of this machine.
    Dictionary options;
    options.set("protocol_whitelist", "file");
    if (source.isRaw()) {
        describeRawPictures(source, options);
    } else if (namesPictures(source.file)) {
        options.set("start_number_range", kFirstPictureUpTo);
        if (!source.pictureRate.empty())
            options.set("framerate", source.pictureRate);
    }
    const AVInputFormat* const format = formatOf(source);
    AVFormatContext* opened = avformat_alloc_context();
    if (!opened)
        throw std::bad_alloc();
    opened->pb = pipe;
    const int result = avformat_open_input(&opened, address.c_str(), format, options.address());
    if (result < 0)
        stopIfAsked();
    if (result == AVERROR(ENOENT))
        throw ToolError(ExitCode::missingInput, "no such file: " + name);
    if (result < 0)
        throw ToolError(ExitCode::unreadable, "cannot read " + name + ": " + errorText(result));
    Input input(opened);
    findStreams(*input, source);
    return input;
}

// The name of a decoder that must take the place of the usual one; null for the others. WebM has transparency
// as a second picture beside the first, which FFmpeg's own decoders ignore. Sound comes from decoders in
// whole numbers: those in floating point differ in the last bits from one processor to another.
const char* specialDecoderFor(const AVStream& stream)
{
    switch (stream.codecpar->codec_id) {
    case AV_CODEC_ID_VP8:
        return hasAlphaBeside(stream) ? "libvpx" : nullptr;
    case AV_CODEC_ID_VP9:
        return hasAlphaBeside(stream) ? "libvpx-vp9" : nullptr;
    case AV_CODEC_ID_AAC:
        return "aac_fixed";
    case AV_CODEC_ID_AC3:
        return "ac3_fixed";
    case AV_CODEC_ID_MP2:
        return "mp2";
    case AV_CODEC_ID_MP3:
        return "mp3";
    default:
        return nullptr;
    }
}

const AVCodec* decoderFor(const AVStream& stream)
{
    const char* const special = specialDecoderFor(stream);
    const AVCodec* const codec = special ? avcodec_find_decoder_by_name(special) : nullptr;
    return codec ? codec : avcodec_find_decoder(stream.codecpar->codec_id);
}

} // namespace

bool hasAlphaBeside(const AVStream& stream)
{
    const AVCodecID codec = stream.codecpar->codec_id;
    const AVDictionaryEntry* const mode = av_dict_get(stream.metadata, "alpha_mode", nullptr, 0);
    return (codec == AV_CODEC_ID_VP8 || codec == AV_CODEC_ID_VP9) && mode
        && std::string_view(mode->value) == "1";
}

Input openClip(const ClipSource& source)
{
    checkReadable(source);
    if (source.format.empty() && isAnimatedWebp(source.path())) {
        Input animation = openAnimatedWebp(source.path());
        findStreams(*animation, source);
        return animation;
    }
    return opened(source, nullptr, "file:" + source.path().string());
}

Input openPassingClip(const ClipSource& source, AVIOContext& pipe) { return opened(source, &pipe, ""); }

int pictureStreamOf(const AVFormatContext& input, const fs::path& file)
{
    const int stream =
        av_find_best_stream(const_cast<AVFormatContext*>(&input), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (stream < 0 || input.streams[stream]->disposition & AV_DISPOSITION_ATTACHED_PIC)
        throw ToolError(ExitCode::unreadable, "no pictures in " + file.string());
    return stream;
}

void readOnly(AVFormatContext& input, int stream)
{
    for (unsigned i = 0; i < input.nb_streams; ++i)
        input.streams[i]->discard = int(i) == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

Codec openDecoder(const AVStream& stream, const fs::path& file, void* watcher)
{
    const AVCodec* const codec = decoderFor(stream);
    if (!codec)
        throw ToolError(ExitCode::unreadable,
            "no decoder for " + std::string(avcodec_get_name(stream.codecpar->codec_id)) + " in "
                + file.string());
    Codec decoder(avcodec_alloc_context3(codec));
    if (!decoder)
        throw std::bad_alloc();
    require(avcodec_parameters_to_context(decoder.get(), stream.codecpar), "decoder parameters");
    if (hasAlphaBeside(stream) && decoder->pix_fmt == AV_PIX_FMT_YUV420P)
        decoder->pix_fmt = AV_PIX_FMT_YUVA420P;
    decoder->opaque = watcher;
    decoder->pkt_timebase = stream.time_base;
    decoder->thread_count = decoderThreads(coreCount());
    const int result = avcodec_open2(decoder.get(), codec, nullptr);
    if (result < 0)
        throw ToolError(ExitCode::unreadable, "cannot decode " + file.string() + ": " + errorText(result));
    return decoder;
}

} // namespace tool::media
