// From a drawing function to the signature of the table.
#pragma once

#include "effects/transitions/Canvas.h"
#include "effects/transitions/Progress.h"
#include "effects/transitions/TransitionFrame.h"

#include <cmath>

namespace transitions {

/// Checks the frame and brings its times into the range that drawing functions rely on.
template <void (*draw)(const Canvas&, const Progress&)>
void lifted(u8* dst, const u8* from, const u8* to, const TransitionFrame* frame)
{
    const pixels::Extent size{frame->width, frame->height};
    if (size.width < 1 || size.height < 1 || size.width > pixels::kLargestSide
        || size.height > pixels::kLargestSide)
        return;
    const Canvas canvas{{dst, size, frame->stride}, {from, size, frame->stride}, {to, size, frame->stride},
        size.width, size.height};
    const float total = frame->totalTime;
    if (!(total > 0) || !std::isfinite(total))
        return pixels::rows::copy(canvas.from, canvas.dst);
    draw(canvas, Progress(pixels::clamped(frame->time, 0.0f, total), total));
}

} // namespace transitions
