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
    /// The next number, 0 .. 32767.
    constexpr int next()
    {
        state_ = state_ * kMultiplier + kIncrement;
        return int(state_ >> 16 & 0x7FFF);
    }
    /// Moves on as `count` calls of next() do.
    constexpr void skip(u32 count)
    {
        u32 multiplier = kMultiplier;
        u32 increment = kIncrement;
        for (; count != 0; count >>= 1) {
            if (count & 1)
                state_ = state_ * multiplier + increment;
            increment *= multiplier + 1;
            multiplier *= multiplier;
        }
    }
    /// Stores what `count` calls of next() give, in their order and much faster.
    void fill(u16* numbers, int count);

private:
    static constexpr u32 kMultiplier = 214013;
    static constexpr u32 kIncrement = 2531011;

    u32 state_;
};

/// The calling thread's generator; every thread starts at seed 1. Effects draw on the evaluating thread
/// only, never inside a parallel loop.
RandomGenerator& threadRandom();

} // namespace pixels
