// Walks that go on from row to row through a few states, on two threads all the same.
#pragma once

#include "effects/am/library/amFrame.h"

#include <tbb/task_arena.h>

#include <array>

namespace KEXSDK::am {

/// Draws every row in memory order: walkRow(y, state) draws row y and answers the state after it, and two
/// equal states go on equally. When the picture is not changed in place, the upper half starts at once from
/// a guess; afterwards its first rows are drawn again from the true state, until that meets the state which
/// the guess led to. Walks through a thousand states meet within a row or two, as a rule.
template <class WalkRow> void walkRows(const Frame& f, u32 start, WalkRow walkRow)
{
    const int height = f.dst.height();
    const bool small = height < 2 * pixels::rows::rowsPerTask(f.dst.extent());
    if (f.inPlace() || small || tbb::this_task_arena::max_concurrency() < 2) {
        for (int y = 0; y < height; ++y)
            start = walkRow(y, start);
        return;
    }
    const int middle = height / 2;
    u32 reached = start;
    std::array<u32, kMaxExtent - kMaxExtent / 2> guessed;
    pixels::rows::anyOrder({pixels::rows::kPixelsPerTask, 2}, [&](int half) {
        if (half == 0) {
            for (int y = 0; y < middle; ++y)
                reached = walkRow(y, reached);
            return;
        }
        u32 guess = start;
        for (int y = middle; y < height; ++y) {
            guessed[std::size_t(y - middle)] = guess;
            guess = walkRow(y, guess);
        }
    });
    for (int y = middle; y < height && reached != guessed[std::size_t(y - middle)]; ++y)
        reached = walkRow(y, reached);
}

} // namespace KEXSDK::am
