// Conversion between a clip's frames and the engine's pictures.
#pragma once

#include "effectengine/media/ToneMapper.h"
#include "pixels/View.h"

#include <vector>

namespace tool::media {

/// The scaling library's context for one kind of frame after another.
class FrameScaler {
public:
    /// Fills `to`, which has its size, format and buffers. Throws std::runtime_error.
    void scale(const AVFrame& from, const Colour& fromColour, AVFrame& to, const Colour& toColour);

private:
    struct Shape {
        int width, height, format;
        bool operator==(const Shape&) const = default;
    };

    Scaler context_;
    Shape shape_{};
};

/// Converts frames of a clip to upright pictures of one size, bottom row first.
class ToPicture {
public:
    /// @param width, height  of the pictures; frames of another size are scaled
    ToPicture(const ClipInfo& clip, int width, int height);

    /// Writes every pixel. Throws std::runtime_error.
    void convert(const AVFrame& frame, pixels::View picture);

private:
    void convertStored(const AVFrame& frame, pixels::View picture);
    void scale(const AVFrame& frame, const Colour& colour, pixels::View picture);

    ClipInfo clip_;
    pixels::Extent size_;
    pixels::Extent stored_; ///< the size before the picture is turned upright
    FrameScaler scaler_;
    Frame scaled_;
    std::optional<ToneMapper> toneMapper_;
    std::vector<unsigned char> turned_;
};

/// Converts pictures to frames for an encoder.
class FromPicture {
public:
    /// @param keepsAlpha  false: every pixel becomes opaque, whatever an effect left in its alpha
    FromPicture(AVPixelFormat format, const Colour& colour, bool keepsAlpha)
        : format_(format),
          colour_(colour),
          keepsAlpha_(keepsAlpha)
    {
    }

    /// Gives the frame new or reused buffers of the format and fills them. Throws.
    void convert(pixels::ConstView picture, AVFrame& frame);

private:
    AVPixelFormat format_;
    Colour colour_;
    bool keepsAlpha_;
    FrameScaler scaler_;
    Frame copied_;
};

/// Makes every pixel opaque black.
void blacken(pixels::View picture);

} // namespace tool::media
