// Opening of files and decoders, and the reasons for which they are refused.
#include "effectengine/media/openClip.h"

#include "effectengine/ToolError.h"
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

void checkReadable(const fs::path& file)
{
    if (namesPictures(file))
        return;
    if (!fs::exists(file))
        throw ToolError(ExitCode::missingInput, "no such file: " + file.string());
    if (fs::is_directory(file))
        throw ToolError(ExitCode::unreadable, "is a directory, not a clip: " + file.string());
    if (access(file.c_str(), R_OK) != 0)
        throw ToolError(ExitCode::unreadable, "no permission to read " + file.string());
}

void findStreams(AVFormatContext& input, const fs::path& file)
{
    if (avformat_find_stream_info(&input, nullptr) < 0)
        throw ToolError(ExitCode::unreadable, "cannot read " + file.string() + ": no streams found");
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

Input openClip(const fs::path& file, const std::string& pictureRate)
{
    checkReadable(file);
    if (isAnimatedWebp(file)) {
        Input animation = openAnimatedWebp(file);
        findStreams(*animation, file);
        return animation;
    }
    // A clip that refers to others (a playlist) may name only files of this machine.
    Dictionary options;
    options.set("protocol_whitelist", "file");
    if (namesPictures(file)) {
        options.set("start_number_range", kFirstPictureUpTo);
        if (!pictureRate.empty())
            options.set("framerate", pictureRate);
    }
    AVFormatContext* opened = nullptr;
    const int result =
        avformat_open_input(&opened, ("file:" + file.string()).c_str(), nullptr, options.address());
    if (result == AVERROR(ENOENT))
        throw ToolError(ExitCode::missingInput, "no such file: " + file.string());
    if (result < 0)
        throw ToolError(ExitCode::unreadable, "cannot read " + file.string() + ": " + errorText(result));
    Input input(opened);
    findStreams(*input, file);
    return input;
}

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
