// Checks and conversions of the verbs for clips.
#include "effectengine/media/ClipJob.h"

#include "effectengine/Pictures.h"
#include "effectengine/ToolError.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace fs = std::filesystem;

namespace media {

namespace {

void warn(const ClipInfo& clip, const std::string& what)
{
    std::fprintf(stderr, "effectengine: warning: %s: %s\n", clip.file.c_str(), what.c_str());
}

} // namespace

pixels::Extent workingSize(const ClipInfo& clip, const std::string& named)
{
    PictureSize size{unsigned(clip.width), unsigned(clip.height)};
    if (!named.empty()) {
        size = parseSize(named);
    } else {
        size = fitted(size);
        if (int(size.width) != clip.width || int(size.height) != clip.height)
            warn(clip,
                "scaled from " + std::to_string(clip.width) + " x " + std::to_string(clip.height) + " to "
                    + std::to_string(size.width) + " x " + std::to_string(size.height));
    }
    return {int(size.width), int(size.height)};
}

pixels::Extent shapedLike(const ClipInfo& clip, pixels::Extent size, AVRational pixelAspect)
{
    const auto ratio = [](AVRational aspect) {
        return aspect.num > 0 && aspect.den > 0 ? av_q2d(aspect) : 1.0;
    };
    const double shape = double(clip.width) / clip.height * ratio(clip.sampleAspect) / ratio(pixelAspect);
    const auto rounded = [](double side, int most) {
        return int(std::clamp(std::round(side), 1.0, double(most)));
    };
    if (size.height * shape < size.width)
        return {rounded(size.height * shape, size.width), size.height};
    return {size.width, rounded(size.width / shape, size.height)};
}

EncoderChoice choiceOf(const EncodingOptions& options)
{
    EncoderChoice choice{options.codec, options.quality, {}};
    for (const std::string& option : options.encoderOptions) {
        const std::size_t equals = option.find('=');
        if (equals == std::string::npos || equals == 0)
            throw ToolError(
                ExitCode::usage, "an encoder's option is written name=value, not \"" + option + "\"");
        choice.options.push_back({option.substr(0, equals), option.substr(equals + 1)});
    }
    return choice;
}

void checkNotItself(const fs::path& in, const fs::path& out)
{
    std::error_code ignored;
    if (in == out || fs::equivalent(in, out, ignored))
        throw ToolError(ExitCode::usage, out.string() + " is the input; it would be replaced");
}

pixels::View viewOf(const host::Image& image)
{
    return {image.bytes().data(), {int(image.width()), int(image.height())}};
}

pixels::ConstView viewOf(CEffectImage* image)
{
    unsigned width = 0;
    unsigned height = 0;
    GetImageWidth(image, &width);
    GetImageHeight(image, &height);
    return {host::bytesOf(image).data(), {int(width), int(height)}};
}

void warnOfDepth(const ClipInfo& clip)
{
    const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(clip.format);
    const AVColorTransferCharacteristic transfer = clip.colour.transfer;
    const bool highRange = transfer == AVCOL_TRC_SMPTE2084 || transfer == AVCOL_TRC_ARIB_STD_B67;
    if (format && format->comp[0].depth > 8 && !(format->flags & AV_PIX_FMT_FLAG_PAL))
        warn(clip,
            std::to_string(format->comp[0].depth) + " bits a channel become 8"
                + (highRange ? "; its high dynamic range is kept as it is coded, and effects see the codes"
                             : ""));
}

void warnOfAlpha(const ClipInfo& clip, pixels::ConstView picture, AVPixelFormat output)
{
    const auto mayHold = [](AVPixelFormat format) {
        return av_pix_fmt_desc_get(format)->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL);
    };
    if (!clip.hasAlpha() || mayHold(output))
        return;
    for (int y = 0; y < picture.height(); ++y)
        if (std::ranges::any_of(picture.row(y), [](pixels::Bgra p) { return p.a != 255; }))
            return warn(clip, "transparency has no place in the output");
}

void warnOfDamage(const ClipReader& reader)
{
    if (reader.damaged() > 0)
        warn(reader.info(), std::to_string(reader.damaged()) + " damaged parts were left out");
}

host::FrameTime timeOf(const FramePlace& place, const ClipInfo& clip)
{
    return {.seconds = double(place.sinceFirst) * av_q2d(clip.timeBase),
        .frameRate = clip.rate(),
        .total = clip.duration};
}

} // namespace media
