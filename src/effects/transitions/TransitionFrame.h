// The contract between a transition node and the function that draws its frames.
#pragma once

#include "core/Types.h"

namespace transitions {

/// What a transition needs to know about one frame.
struct TransitionFrame {
    i32 width;        ///< pixels
    i32 height;       ///< pixels
    i32 stride;       ///< bytes from one row to the next: width * 4
    i32 bitsPerPixel; ///< 32
    float time;       ///< since the transition began
    float totalTime;  ///< its duration, in the same unit
};

/// Draws one frame. The three buffers hold height rows of width pixels (blue, green, red, alpha; the bottom
/// row first) at the frame's stride; `dst` overlaps neither of the others. Time outside [0, totalTime] counts
/// as the nearer end; a total time that is no positive number shows `from`. Frames with a side outside
/// 1..pixels::kLargestSide are not drawn.
using TransitionFunc = void(u8* dst, const u8* from, const u8* to, const TransitionFrame* frame);

} // namespace transitions
