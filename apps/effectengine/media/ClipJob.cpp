// Checks and conversions of the verbs for clips.
#include "effectengine/media/ClipJob.h"

#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/encoders.h"
#include "effectengine/pictureFiles.h"

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

bool isTransparent(pixels::ConstView picture)
{
    for (int y = 0; y < picture.height(); ++y)
        if (std::ranges::any_of(picture.row(y), [](pixels::Bgra p) { return p.a != 255; }))
            return true;
    return false;
}

bool isTransparent(const fs::path& file)
{
    ClipReader reader(file);
    const pixels::Extent size{reader.info().width, reader.info().height};
    ToPicture convert(reader.info(), size.width, size.height);
    std::vector<unsigned char> pixels(std::size_t(size.width) * std::size_t(size.height) * 4);
    const pixels::View picture(pixels.data(), size);
    const Frame frame = makeFrame();
    while (reader.next(*frame)) {
        stopIfAsked();
        convert.convert(*frame, picture);
        if (isTransparent(picture))
            return true;
    }
    return false;
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
    EncoderChoice choice{options.codec, options.quality, {}, options.alpha == AlphaChoice::keep};
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

bool keepsAlpha(AlphaChoice choice, const AVCodec& encoder, const std::vector<const ClipInfo*>& clips)
{
    if (choice != AlphaChoice::automatic)
        return choice == AlphaChoice::keep;
    return offersAlpha(encoder) && std::ranges::any_of(clips, [](const ClipInfo* clip) {
        return clip->mayBeTransparent() && isTransparent(clip->file);
    });
}

AlphaWarning::AlphaWarning(const ClipInfo& clip, AlphaChoice choice, AVPixelFormat output)
    : clip_(clip),
      looks_(choice == AlphaChoice::automatic && clip.mayBeTransparent() && !hasAlpha(output))
{
}

void AlphaWarning::look(pixels::ConstView picture)
{
    if (!looks_ || !isTransparent(picture))
        return;
    looks_ = false;
    warn(clip_,
        "transparency has no place in the output (it has in .webm, .apng, and with --codec prores_ks, qtrle "
        "or "
        "ffv1)");
}

void warnOfDamage(const ClipReader& reader)
{
    const std::set<long long>& frames = reader.damagedFrames();
    if (frames.empty())
        return;
    std::string which = "damaged at frame " + std::to_string(*frames.begin());
    if (frames.size() > 1)
        which +=
            " and " + std::to_string(frames.size() - 1) + " more up to " + std::to_string(*frames.rbegin());
    warn(reader.info(), which + "; shown as far as it can be decoded");
}

host::FrameTime timeOf(const FramePlace& place, const ClipInfo& clip)
{
    return {.seconds = double(place.sinceFirst) * av_q2d(clip.timeBase),
        .frameRate = clip.rate(),
        .total = clip.duration};
}

} // namespace media
