// Settings, formats and time bases by codec; the user's own settings come last.
#include "effectengine/media/encoders.h"

#include "effectengine/ToolError.h"
#include "effectengine/media/yuvPixels.h"

#include <algorithm>
#include <array>
#include <span>

namespace tool::media {

namespace {

/// The settings of an encoder unless the user chose others.
struct Settings {
    std::string_view encoder;
    std::string_view quality; ///< name of the option that --quality sets
    std::vector<std::pair<const char*, const char*>> options;
};

const Settings* settingsOf(std::string_view encoder)
{
    static const std::array kSettings{
        Settings{"libx264", "crf", {{"crf", "20"}}},
        Settings{"libx265", "crf", {{"crf", "22"}, {"x265-params", "log-level=none"}}},
        Settings{"libvpx-vp9", "crf",
            {{"crf", "31"}, {"b", "0"}, {"row-mt", "1"}, {"deadline", "good"}, {"cpu-used", "3"}}},
        Settings{"libvpx", "crf", {{"crf", "10"}, {"b", "4M"}, {"deadline", "good"}, {"cpu-used", "2"}}},
        Settings{"libaom-av1", "crf", {{"crf", "30"}, {"b", "0"}, {"row-mt", "1"}, {"cpu-used", "6"}}},
        Settings{"libsvtav1", "crf", {{"crf", "35"}}},
        Settings{"ffv1", "", {{"level", "3"}, {"slices", "4"}}},
    };
    const auto found = std::ranges::find(kSettings, encoder, &Settings::encoder);
    return found == kSettings.end() ? nullptr : &*found;
}

constexpr int kUsualScale = 3; // quantiser, 2 to 31, of encoders without a rate factor

std::span<const AVPixelFormat> formatsOf(const AVCodec& codec)
{
    const AVPixelFormat* end = codec.pix_fmts;
    while (end && *end != AV_PIX_FMT_NONE)
        ++end;
    return {codec.pix_fmts, end};
}

// The 8-bit YUV format with the source's chroma resolution, as far as codec and size allow it.
AVPixelFormat wantedFormat(const AVCodec& codec, const FrameShape& shape)
{
    const AVPixFmtDescriptor* const source = av_pix_fmt_desc_get(shape.sourceFormat);
    int columns = 1;
    int rows = 1;
    if (source && !(source->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL))
        && source->nb_components >= 3) {
        columns = source->log2_chroma_w;
        rows = source->log2_chroma_h;
    }
    const bool evenOnly = codec.id == AV_CODEC_ID_H264 || codec.id == AV_CODEC_ID_HEVC;
    if (evenOnly && ((shape.width % 2 && columns) || (shape.height % 2 && rows))) {
        tool::warn("odd size " + std::to_string(shape.width) + " x " + std::to_string(shape.height)
            + ": written as 4:4:4, which some players cannot show");
        columns = rows = 0;
    }
    return !columns ? AV_PIX_FMT_YUV444P : rows ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV422P;
}

// The offered format with transparency that loses least; AV_PIX_FMT_NONE when there is none.
AVPixelFormat alphaFormat(
    std::span<const AVPixelFormat> offered, const FrameShape& shape, AVPixelFormat opaque)
{
    const AVPixFmtDescriptor* const source = av_pix_fmt_desc_get(shape.sourceFormat);
    const bool fromRgb = source && source->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL);
    AVPixelFormat wanted = AV_PIX_FMT_BGRA;
    if (!fromRgb)
        wanted = opaque == AV_PIX_FMT_YUV444P ? AV_PIX_FMT_YUVA444P
            : opaque == AV_PIX_FMT_YUV422P    ? AV_PIX_FMT_YUVA422P
                                              : AV_PIX_FMT_YUVA420P;
    if (offered.empty())
        return wanted;
    AVPixelFormat best = AV_PIX_FMT_NONE;
    for (const AVPixelFormat format : offered)
        if (hasAlpha(format))
            best = av_find_best_pix_fmt_of_2(best, format, wanted, 1, nullptr);
    return best;
}

AVPixelFormat chooseFormat(const AVCodec& codec, const FrameShape& shape, AVPixelFormat chosen)
{
    constexpr std::array kPictures{AV_CODEC_ID_PNG, AV_CODEC_ID_TIFF, AV_CODEC_ID_TARGA, AV_CODEC_ID_BMP};
    const auto offered = formatsOf(codec);
    const auto offers = [&](AVPixelFormat format) {
        return offered.empty() || std::ranges::find(offered, format) != offered.end();
    };
    if (chosen != AV_PIX_FMT_NONE) {
        if (!offers(chosen))
            throw ToolError(ExitCode::usage,
                "encoder " + std::string(codec.name) + " has no pixel format " + av_get_pix_fmt_name(chosen));
        return chosen;
    }
    if (codec.id == AV_CODEC_ID_GIF)
        return AV_PIX_FMT_PAL8;
    if (codec.id == AV_CODEC_ID_WEBP)
        return AV_PIX_FMT_BGRA; // the library has a matrix of its own
    if (std::ranges::find(kPictures, codec.id) != kPictures.end())
        return offers(AV_PIX_FMT_RGBA) ? AV_PIX_FMT_RGBA : AV_PIX_FMT_BGRA;
    const AVPixelFormat wanted = wantedFormat(codec, shape);
    if (shape.keepsAlpha && offersAlpha(codec))
        if (const AVPixelFormat format = alphaFormat(offered, shape, wanted); format != AV_PIX_FMT_NONE)
            return format;
    if (offers(wanted))
        return wanted;
    return avcodec_find_best_pix_fmt_of_list(codec.pix_fmts, wanted, 0, nullptr);
}

void setOption(AVCodecContext& encoder, const std::string& name, const std::string& value)
{
    const int result = av_opt_set(&encoder, name.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN);
    if (result == AVERROR_OPTION_NOT_FOUND)
        throw ToolError(ExitCode::usage,
            "encoder " + std::string(encoder.codec->name) + " has no option \"" + name + "\"");
    if (result < 0)
        throw ToolError(ExitCode::usage,
            "encoder " + std::string(encoder.codec->name) + " does not take " + name + "=" + value);
}

void setScale(AVCodecContext& encoder, int scale)
{
    encoder.flags |= AV_CODEC_FLAG_QSCALE;
    encoder.global_quality = FF_QP2LAMBDA * scale;
}

void applyChoice(AVCodecContext& encoder, const EncoderChoice& choice)
{
    const Settings* const settings = settingsOf(encoder.codec->name);
    if (settings)
        for (const auto& [name, value] : settings->options)
            setOption(encoder, name, value);
    if (settings && !settings->quality.empty() && choice.quality)
        setOption(encoder, std::string(settings->quality), std::to_string(*choice.quality));
    else if (encoder.codec_id == AV_CODEC_ID_WEBP)
        setOption(
            encoder, "quality", std::to_string(std::max(0, 100 - 3 * choice.quality.value_or(kUsualScale))));
    else if (!settings)
        setScale(encoder, choice.quality.value_or(kUsualScale));
    for (const auto& [name, value] : choice.options)
        setOption(encoder, name, value);
}

// Chooses the unit of times. Old codecs have none: they count frames at one of a few rates.
void chooseTimeBase(AVCodecContext& encoder, const FrameShape& shape)
{
    encoder.framerate = shape.frameRate;
    encoder.time_base = shape.timeBase;
    if (encoder.codec->supported_framerates)
        encoder.framerate = encoder.codec->supported_framerates[av_find_nearest_q_idx(
            shape.frameRate, encoder.codec->supported_framerates)];
    if (encoder.codec->supported_framerates || encoder.codec_id == AV_CODEC_ID_MPEG4
        || encoder.codec_id == AV_CODEC_ID_THEORA)
        encoder.time_base = av_inv_q(encoder.framerate);
}

} // namespace

EncoderChoice choiceOf(const EncodingOptions& options)
{
    EncoderChoice choice{
        options.codec, options.quality, {}, options.alpha == AlphaChoice::keep, options.compression};
    choice.container = options.container;
    if (!options.pixelFormat.empty()) {
        choice.pixelFormat = av_get_pix_fmt(options.pixelFormat.c_str());
        if (!sws_isSupportedOutput(choice.pixelFormat) || choice.pixelFormat == AV_PIX_FMT_PAL8)
            throw ToolError(ExitCode::usage,
                "cannot write the pixel format \"" + options.pixelFormat
                    + "\" (yuv420p, rgb24, bgra, gray...)");
    }
    for (const std::string& option : options.encoderOptions) {
        const std::size_t equals = option.find('=');
        if (equals == std::string::npos || equals == 0)
            throw ToolError(
                ExitCode::usage, "an encoder's option is written name=value, not \"" + option + "\"");
        choice.options.push_back({option.substr(0, equals), option.substr(equals + 1)});
    }
    return choice;
}

const AVCodec& encoderNamed(const std::string& name)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(name.c_str());
    if (!codec)
        if (const AVCodecDescriptor* const descriptor = avcodec_descriptor_get_by_name(name.c_str()))
            codec = avcodec_find_encoder(descriptor->id);
    if (!codec || codec->type != AVMEDIA_TYPE_VIDEO)
        throw ToolError(ExitCode::usage, "no encoder \"" + name + "\" (effectengine doctor lists them)");
    return *codec;
}

const AVCodec& encoderFor(AVCodecID id, const std::filesystem::path& out)
{
    const AVCodec* const codec = avcodec_find_encoder(id);
    if (!codec)
        throw ToolError(ExitCode::cannotWrite,
            "cannot write " + out.string() + ": no encoder for " + avcodec_get_name(id));
    return *codec;
}

const AVCodec& encoderOf(const std::filesystem::path& out, const EncoderChoice& choice)
{
    if (!choice.codec.empty())
        return encoderNamed(choice.codec);
    const AVCodecID id = av_guess_codec(
        &containerFor(out, choice.container), nullptr, out.c_str(), nullptr, AVMEDIA_TYPE_VIDEO);
    if (id == AV_CODEC_ID_WEBP && isPictureSequence(out))
        return encoderNamed("libwebp"); // the usual one puts all frames into a file
    return encoderFor(id, out);
}

bool offersAlpha(const AVCodec& codec)
{
    const auto offered = formatsOf(codec);
    if (codec.id == AV_CODEC_ID_WRAPPED_AVFRAME)
        return false; // y4m, which has no format with alpha
    return offered.empty() || std::ranges::any_of(offered, hasAlpha);
}

Codec openEncoder(
    const AVCodec& codec, const FrameShape& shape, const EncoderChoice& choice, bool globalHeader)
{
    Codec encoder(avcodec_alloc_context3(&codec));
    if (!encoder)
        throw std::bad_alloc();
    encoder->width = shape.width;
    encoder->height = shape.height;
    encoder->sample_aspect_ratio = shape.sampleAspect;
    encoder->pix_fmt = chooseFormat(codec, shape, choice.pixelFormat);
    if (choice.needsAlpha && !hasAlpha(encoder->pix_fmt))
        throw ToolError(ExitCode::usage,
            "encoder " + std::string(codec.name)
                + " knows no transparency; choose another --codec or name, or leave out --alpha keep");
    if (codec.id == AV_CODEC_ID_VP8 && hasAlpha(encoder->pix_fmt))
        setOption(*encoder, "auto-alt-ref", "0"); // the encoder has no transparency with it
    if (codec.id == AV_CODEC_ID_GIF && shape.keepsAlpha)
        setOption(*encoder, "gifflags", "0"); // whole frames, each of which begins on a clear canvas
    encoder->thread_count = 0;
    chooseTimeBase(*encoder, shape);
    const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(encoder->pix_fmt);
    if (!(format->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL))) {
        const AVPixFmtDescriptor* const source = av_pix_fmt_desc_get(shape.sourceFormat);
        const bool fromYuv = source && !(source->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL));
        Colour colour = fromYuv ? shape.colour : Colour{};
        // Picture files do not tell a matrix, so the one that readers assume is chosen.
        if (!fromYuv)
            colour = completed(colour, encoder->pix_fmt, shape.width, shape.height);
        if (codec.id == AV_CODEC_ID_MJPEG)
            colour.range = AVCOL_RANGE_JPEG;
        encoder->color_range = colour.range;
        encoder->colorspace = colour.space;
        encoder->color_primaries = colour.primaries;
        encoder->color_trc = colour.transfer;
        encoder->chroma_sample_location = colour.location;
    }
    if (globalHeader)
        encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    applyChoice(*encoder, choice);
    const int result = avcodec_open2(encoder.get(), &codec, nullptr);
    if (result < 0)
        throw ToolError(ExitCode::usage,
            "encoder " + std::string(codec.name) + " refuses " + std::to_string(shape.width) + " x "
                + std::to_string(shape.height) + " with these settings: " + errorText(result));
    return encoder;
}

} // namespace tool::media
