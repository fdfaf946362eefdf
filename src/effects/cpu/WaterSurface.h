// Water on a picture: a height field whose waves run on from frame to frame and refract what lies below.
#pragma once

#include "pixels/Buffer.h"
#include "pixels/rows.h"

#include <array>

namespace pixels {

/// The drops' own random numbers: all 32 bits of each state are the value. A new node starts at 1, so every
/// node shows the same drops.
class WaterRandom {
public:
    u32 next() { return state_ = state_ * 1103515245u + 12345u; }
    /// The next value reduced to 0 .. limit - 1, limit > 0.
    int below(int limit) { return int(next() % u32(limit)); }

private:
    u32 state_ = 1;
};

/// Counts a frame of rain; true when a drop falls, which starts the count of ten anew. All of the process
/// shares the count: with several nodes at work, each sees a drop only when it runs out on that node.
/// @param density  a drop falls when fewer frames than this are left
bool rainFalls(int density);

/// For tests, which repeat pictures: sets rainFalls()'s count back to ten, as at the start of the program.
void restartRain();

/// Heights are signed 32-bit numbers that wrap around; only points off the border ever move.
class WaterSurface {
public:
    /// @param damping  each step takes away 1 / 2^damping of a height
    WaterSurface(Extent size, int damping) : size_(size), damping_(damping) { }

    /// Allocates the two height fields, flat, when they do not exist yet. False without memory.
    bool ready();

    /// Adds heightAt(d²) to every point inside the disc, where d is the distance to the centre. The centre
    /// may lie anywhere; nothing happens for a radius below 1.
    template <class Height> void press(Point centre, int radius, Height heightAt)
    {
        if (radius < 1)
            return;
        const i64 r2 = i64(radius) * radius;
        const auto first = [&](int c) { return int(std::max<i64>(i64(c) - radius, 1)); };
        const auto end = [&](int c, int extent) { return int(std::min<i64>(i64(c) + radius, extent - 1)); };
        const int left = first(centre.x);
        const int right = end(centre.x, size_.width);
        const int bottom = first(centre.y);
        const int top = end(centre.y, size_.height);
        if (left >= right || bottom >= top)
            return;
        rows::anyOrder({right - left, top - bottom}, [&](int line) {
            const int y = bottom + line;
            i32* const row = heights(current_) + std::ptrdiff_t(y) * size_.width;
            const i64 dy = i64(y) - centre.y;
            for (int x = left; x < right; ++x) {
                const i64 dx = i64(x) - centre.x;
                const i64 d2 = dx * dx + dy * dy;
                if (d2 < r2)
                    row[x] = i32(u32(row[x]) + u32(heightAt(d2)));
            }
        });
    }

    /// Draws src as seen through the surface and moves the waves on by one step. Border pixels, and those
    /// whose ray leaves the picture, are src's.
    void renderAndStep(ConstView src, View dst);

private:
    i32* heights(int which) const { return fields_.data() + std::size_t(which) * size_.width * size_.height; }

    Extent size_;
    int damping_;
    int current_ = 0;
    Buffer<i32> fields_;
};

} // namespace pixels
