// Files and manifest of a rendering run, frame by frame.
#include "effectengine/media/RenderedPictures.h"

#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"

namespace tool::media {

RenderedPictures::RenderedPictures(const std::filesystem::path& pattern, const ClipInfo& clip,
    pixels::Extent size, const EncoderChoice& choice, Manifest& manifest, std::optional<long long> wanted)
    : pattern_(pattern),
      clip_(clip),
      manifest_(manifest),
      missing_(wanted),
      encoder_(openPictureEncoder(pattern, shapeOf(clip, size.width, size.height), choice,
          [this](long long number, std::span<const unsigned char> file) { writePicture(number, file); }))
{
}

void RenderedPictures::write(AVFrame& frame, const FramePlace& place)
{
    underWay_[place.number] = {place.number, timeOf(place, clip_).seconds,
        numbered(pattern_, place.number).filename().string(), pixelHash(frame), place.damaged};
    encoder_->write(frame, place.number);
}

void RenderedPictures::writePicture(long long number, std::span<const unsigned char> file)
{
    writeFile(numbered(pattern_, number), file);
    manifest_.add(underWay_.at(number));
    underWay_.erase(number);
    if (missing_)
        --*missing_;
    tellWritten();
}

void RenderedPictures::finish()
{
    encoder_->finish();
    stopIfAsked();
    if (missing_.value_or(0) > 0)
        throw ToolError(ExitCode::unreadable,
            clip_.file.string() + ": " + std::to_string(*missing_) + " frames cannot be decoded");
    manifest_.finish();
}

} // namespace tool::media
