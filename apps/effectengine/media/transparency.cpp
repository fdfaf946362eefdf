// The search for transparent pixels.
#include "effectengine/media/transparency.h"

#include "effectengine/interruption.h"
#include "effectengine/media/PictureConversion.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/encoders.h"

#include <algorithm>

namespace tool::media {

namespace {

bool isTransparent(pixels::ConstView picture)
{
    for (int y = 0; y < picture.height(); ++y)
        if (std::ranges::any_of(picture.row(y), [](pixels::Bgra p) { return p.a != 255; }))
            return true;
    return false;
}

bool isTransparent(const ClipSource& source)
{
    ClipReader reader(source);
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

bool keepsAlpha(AlphaChoice choice, const AVCodec& encoder, const std::vector<const ClipInfo*>& clips)
{
    if (choice != AlphaChoice::automatic)
        return choice == AlphaChoice::keep;
    return offersAlpha(encoder) && std::ranges::any_of(clips, [](const ClipInfo* clip) {
        return clip->mayBeTransparent() && (clip->source.passesOnce() || isTransparent(clip->source));
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
    warn(clip_.file,
        "transparency has no place in the output (it has in .webm, .apng, and with --codec prores_ks, qtrle "
        "or ffv1)");
}

} // namespace tool::media
