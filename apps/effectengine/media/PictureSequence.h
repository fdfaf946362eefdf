// The output of a verb as numbered pictures, which appear together when all are complete.
#pragma once

#include "effectengine/media/NumberedPictureEncoder.h"

namespace tool::media {

class PictureSequence final : public ClipSink {
public:
    /// Throws ToolError.
    PictureSequence(
        const std::filesystem::path& pattern, const FrameShape& shape, const EncoderChoice& choice);
    ~PictureSequence() override;

    AVPixelFormat format() const override { return encoder_->format(); }
    Colour colour() const override { return encoder_->colour(); }
    void write(AVFrame& frame, const FramePlace& place) override;
    void finish() override;

private:
    std::filesystem::path pattern_;
    std::filesystem::path workplace_; ///< hidden directory beside the pictures
    std::vector<std::filesystem::path> names_;
    std::unique_ptr<NumberedPictureEncoder> encoder_;
};

} // namespace tool::media
