// What transitions keep from frame to frame.
#pragma once

#include "core/Types.h"

#include <array>
#include <vector>

namespace transitions {

/// One per process, shared by every node of the transitions that use it and not locked: nodes of one of them
/// must not run on two threads at a time. It is never freed.
struct TransitionState {
    /// "Dissolve 2": the place of every pixel (row-major in memory order) in the order in which pixels
    /// change, the size of the picture for which it was drawn, and the pixels changed in the last frame.
    struct {
        std::vector<u32> place;
        int height = 0;
        int stride = 0;
        int changed = 0;
    } dissolve;

    /// "Flash": levels of the brighter and the brightening picture, renewed in every frame.
    struct {
        std::array<u8, 256> rising{};
        std::array<u8, 256> falling{};
    } flash;
};

TransitionState& transitionState();

} // namespace transitions
