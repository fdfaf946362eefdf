// The output of a rendering run: numbered pictures, each noted in a manifest once its file is complete.
#pragma once

#include "effectengine/media/Manifest.h"
#include "effectengine/media/NumberedPictureEncoder.h"
#include "pixels/View.h"

namespace tool::media {

class RenderedPictures final : public ClipSink {
public:
    /// @param manifest  begun; finish() finishes it
    /// @param wanted    how many frames there must be before the run is complete; empty when nobody knows
    /// Throws ToolError.
    RenderedPictures(const std::filesystem::path& pattern, const ClipInfo& clip, pixels::Extent size,
        const EncoderChoice& choice, Manifest& manifest, std::optional<long long> wanted);

    AVPixelFormat format() const override { return AV_PIX_FMT_RGBA; }
    Colour colour() const override { return {}; }
    void write(AVFrame& frame, const FramePlace& place) override;
    /// Throws ToolError also when frames are missing.
    void finish() override;

private:
    void writePicture(long long number, std::span<const unsigned char> file);

    std::filesystem::path pattern_;
    const ClipInfo& clip_;
    Manifest& manifest_;
    std::optional<long long> missing_;
    std::map<long long, RenderedFrame> underWay_; ///< frames within the encoder
    std::unique_ptr<NumberedPictureEncoder> encoder_;
};

} // namespace tool::media
