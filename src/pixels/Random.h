// The engine's pseudo-random numbers.
#pragma once

#include "core/Types.h"

namespace pixels {

/// Linear congruential generator with 15-bit results; the multiplier and the increment are those of the
/// classic C runtime generator, so scenes replay the sequences that existing projects were made with.
class RandomGenerator {
public:
    explicit constexpr RandomGenerator(u32 seed = 1) : state_(seed) { }
    constexpr void seed(u32 value) { state_ = value; }
    /// 0 .. 32767.
    constexpr int next()
    {
        state_ = state_ * 214013u + 2531011u;
        return int(state_ >> 16 & 0x7FFF);
    }

private:
    u32 state_;
};

/// The calling thread's generator; every thread starts at seed 1. Effects draw on the evaluating thread
/// only, never inside a parallel loop.
RandomGenerator& threadRandom();

} // namespace pixels
