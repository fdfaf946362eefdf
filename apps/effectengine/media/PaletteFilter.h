// A filter that gives each frame a palette of its own, for GIF.
#pragma once

#include "effectengine/media/ClipSink.h"

namespace tool::media {

/// Gives every frame the 256 colours that suit it best, with error diffusion.
class PaletteFilter {
public:
    /// For BGRA frames of the shape. Throws std::runtime_error.
    explicit PaletteFilter(const FrameShape& shape);

    /// Replaces the frame by one with a palette; pts and size stay. Throws std::runtime_error.
    void apply(AVFrame& frame);

private:
    Filters graph_;
    AVFilterContext* source_ = nullptr;
    AVFilterContext* sink_ = nullptr;
};

} // namespace tool::media
