// One step of the waves, fused with the drawing: both read the same three rows of heights.
#include "effects/cpu/WaterSurface.h"

#include "pixels/sample.h"

#include <atomic>

namespace pixels {

namespace {

constexpr int kFramesBetweenDrops = 10;
std::atomic<int> framesToNextDrop = kFramesBetweenDrops;

i32 wrapped(u32 x) { return i32(x); }

// Draws and moves row y, 0 < y < height - 1: dst takes refracted pixels, `next` the heights of the next step.
void refractAndStepRow(
    ConstView src, Bgra* dst, const i32* current, i32* next, Extent size, int damping, int y)
{
    const int w = size.width;
    const u32 pixelCount = u32(size.width) * u32(size.height);
    const int start = y * w;
    const i32* const here = current + start;
    const i32* const below = here - w;
    const i32* const above = here + w;
    i32* const to = next + start;
    // Rays that leave a row go on in the one beside it: the picture counts as one long row.
    const ConstView line(src.bytes(), {int(pixelCount), 1});
    sampleRow(line, dst, 1, w - 1, [=](int x, auto at) {
        const u32 height = u32(here[x]);
        const i32 dx = wrapped(height - u32(here[x + 1])) >> 3;
        const i32 dy = wrapped(height - u32(above[x])) >> 3;
        const u32 index = u32(start + x) + u32(dx) + u32(w) * u32(dy);
        return at({int(index < pixelCount ? index : u32(start + x)), 0});
    });
#pragma GCC ivdep
    for (int x = 1; x < w - 1; ++x) {
        const u32 around = u32(below[x - 1]) + u32(below[x]) + u32(below[x + 1]) + u32(here[x - 1])
            + u32(here[x + 1]) + u32(above[x - 1]) + u32(above[x]) + u32(above[x + 1]);
        const i32 v = wrapped(u32(wrapped(around) >> 2) - u32(to[x]));
        to[x] = wrapped(u32(v) - u32(v >> damping));
    }
}

} // namespace

bool rainFalls(int density)
{
    int frames = framesToNextDrop;
    bool falls;
    do
        falls = frames - 1 < density;
    while (!framesToNextDrop.compare_exchange_weak(frames, falls ? kFramesBetweenDrops : frames - 1));
    return falls;
}

void restartRain() { framesToNextDrop = kFramesBetweenDrops; }

bool WaterSurface::ready()
{
    return fields_ || fields_.allocate(std::size_t(size_.width) * size_.height * 2);
}

void WaterSurface::renderAndStep(ConstView src, View dst)
{
    const StableInput stable(src, dst);
    const ConstView from = stable.view();
    if (!from.bytes())
        return;
    const i32* const current = heights(current_);
    i32* const next = heights(current_ ^ 1);
    rows::anyOrderRuns(size_, [&](int first, int end) {
        widest([=, this] {
            for (int y = first; y < end; ++y) {
                const bool border = y == 0 || y == size_.height - 1;
                const auto source = from.row(y);
                const auto target = dst.row(y);
                if (border) {
                    std::memcpy(target.data(), source.data(), source.size_bytes());
                    continue;
                }
                target.front() = source.front();
                target.back() = source.back();
                refractAndStepRow(from, target.data(), current, next, size_, damping_, y);
            }
        });
    });
    current_ ^= 1;
}

} // namespace pixels
