// What an output is when its name does not tell.
#include "effectengine/media/encoders.h"
#include "effectengine/media/transparency.h"

#include <algorithm>
#include <array>

namespace tool::media {

namespace {

// The kinds of containers whose frames are usually not compressed, and their codecs.
constexpr const char* kRawCodec = "rawvideo";
constexpr std::array<std::string_view, 2> kRawContainers{"nut", "rawvideo"};

bool isRgb(AVPixelFormat format)
{
    const AVPixFmtDescriptor* const facts = av_pix_fmt_desc_get(format);
    return facts && facts->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL);
}

// Whether pictures of the format can be written as they are stored: 8 bits a channel, and none of the marks
// of full range that only old formats have.
bool canStay(AVPixelFormat format)
{
    const AVPixFmtDescriptor* const facts = av_pix_fmt_desc_get(format);
    constexpr int kOther = AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_HWACCEL
        | AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT;
    return facts && !(facts->flags & kOther) && !std::string_view(facts->name).starts_with("yuvj")
        && sws_isSupportedOutput(format)
        && std::all_of(facts->comp, facts->comp + facts->nb_components,
            [](const AVComponentDescriptor& channel) { return channel.depth == 8; });
}

AVPixelFormat rawFormat(AVPixelFormat source, bool keepsAlpha)
{
    if (canStay(source) && (hasAlpha(source) || !keepsAlpha))
        return source;
    if (isRgb(source))
        return keepsAlpha ? AV_PIX_FMT_BGRA : AV_PIX_FMT_RGB24;
    return AV_PIX_FMT_NONE;
}

} // namespace

void settleChoice(EncoderChoice& choice, const std::filesystem::path& out, AlphaChoice alpha,
    const std::vector<const ClipInfo*>& clips)
{
    if (isPictureSequence(out))
        return;
    const AVPixelFormat source = clips.front()->format;
    if (choice.container.empty() && goesToPipe(out)) {
        const bool yuv = !isRgb(source) && choice.codec.empty() && choice.pixelFormat == AV_PIX_FMT_NONE
            && !keepsAlpha(alpha, encoderNamed(kRawCodec), clips);
        choice.container = yuv ? "y4m" : "nut";
    }
    if (choice.codec.empty() && std::ranges::find(kRawContainers, choice.container) != kRawContainers.end())
        choice.codec = kRawCodec;
    if (!choice.container.empty() && choice.codec == kRawCodec && choice.pixelFormat == AV_PIX_FMT_NONE)
        choice.pixelFormat = rawFormat(source, keepsAlpha(alpha, encoderNamed(kRawCodec), clips));
}

} // namespace tool::media
