// Many random numbers at once, and per-thread random state.
#include "core/Random.h"

#include "pixels/widest.h"

namespace pixels {

void RandomGenerator::fill(u16* numbers, int count)
{
    constexpr int kLanes = 16;
    // kLanes steps at once: a state s becomes s * stride + offset.
    constexpr u32 kOffset = [] {
        RandomGenerator zero(0);
        zero.skip(kLanes);
        return zero.state_;
    }();
    constexpr u32 kStride = [] {
        RandomGenerator one(1);
        one.skip(kLanes);
        return one.state_;
    }() - kOffset;

    u32 lanes[kLanes];
    RandomGenerator first = *this;
    for (u32& lane : lanes) {
        first.next();
        lane = first.state_;
    }
    const int whole = count - count % kLanes;
    widest([lanes, numbers, whole]() mutable {
        for (int n = 0; n < whole; n += kLanes) {
            for (int i = 0; i < kLanes; ++i) {
                numbers[n + i] = u16(lanes[i] >> 16 & 0x7FFF);
                lanes[i] = lanes[i] * kStride + kOffset;
            }
        }
    });
    skip(u32(whole));
    for (int n = whole; n < count; ++n)
        numbers[n] = u16(next());
}

RandomGenerator& threadRandom()
{
    thread_local RandomGenerator generator;
    return generator;
}

} // namespace pixels
