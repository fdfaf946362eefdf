// High dynamic range into the range of BT.709, frame by frame.
#pragma once

#include "effectengine/media/ClipReader.h"

namespace tool::media {

/// A graph of the library's filters for frames of one kind after another. Its result for a frame depends on
/// that frame and the clip's notes alone.
class ToneMapper {
public:
    /// @param clip  tone-mapped
    /// @param deep  frames of 16 bits a channel come out, else of 8
    ToneMapper(const ClipInfo& clip, bool deep);

    /// The frame in red, green and blue of BT.709, with its transparency; it holds until the next call.
    /// Throws std::runtime_error.
    const AVFrame& map(const AVFrame& frame);

private:
    void build(const AVFrame& frame);

    ClipInfo clip_;
    bool deep_;
    Filters graph_;
    AVFilterContext* source_ = nullptr;
    AVFilterContext* sink_ = nullptr;
    int width_ = 0;
    int height_ = 0;
    int format_ = AV_PIX_FMT_NONE;
    Colour colour_; ///< of the frames, with what the clip leaves open
    Frame mapped_ = makeFrame();
};

/// Throws ToolError when the libraries of this machine cannot map tones.
void checkToneMapping();

/// The brightest light in the clip, in multiples of the white of BT.709 (100 candela a square metre): as its
/// file tells, else 10. Of a clip that passes once only its container tells.
double brightestOf(const ClipSource& clip, const AVStream& pictures);

} // namespace tool::media
