// Rows drawn in order, each from the state in which the one before it ended, on two threads all the same.
#pragma once

#include "effects/am/library/amFrame.h"
#include "pixels/Scratch.h"

#include <tbb/task_arena.h>

namespace KEXSDK::am {

/// Draws every row in memory order: drawRow(y, state) draws row y and answers the state after it, and two
/// equal states go on equally. When the picture is not changed in place, the upper half starts at once from a
/// guess; afterwards its first rows are drawn again from the true state, until that meets the state which the
/// guess led to. One of a thousand states meets within a row or two, as a rule.
template <class DrawRow> void carryThroughRows(const Frame& f, u32 start, DrawRow drawRow)
{
    const int height = f.dst.height();
    const bool small = height < 2 * pixels::rows::rowsPerTask(f.dst.extent());
    if (f.inPlace() || small || tbb::this_task_arena::max_concurrency() < 2) {
        for (int y = 0; y < height; ++y)
            start = drawRow(y, start);
        return;
    }
    const int middle = height / 2;
    u32 reached = start;
    const pixels::Scratch<u32> guessed(std::size_t(height - middle));
    pixels::rows::anyOrder({pixels::rows::kPixelsPerTask, 2}, [&](int half) {
        if (half == 0) {
            for (int y = 0; y < middle; ++y)
                reached = drawRow(y, reached);
            return;
        }
        u32 guess = start;
        for (int y = middle; y < height; ++y) {
            guessed[std::size_t(y - middle)] = guess;
            guess = drawRow(y, guess);
        }
    });
    for (int y = middle; y < height && reached != guessed[std::size_t(y - middle)]; ++y)
        reached = drawRow(y, reached);
}

} // namespace KEXSDK::am
