// Vertigo: each frame is mixed into the turned and zoomed previous output.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/Buffer.h"
#include "pixels/numbers.h"
#include "pixels/sample.h"

#include <cmath>

namespace KEXSDK {
namespace {

constexpr auto kPhaseIncrement =
    Param<int>{"PhaseIncrement", 1, {0, 100}, "how fast the turning changes, in hundredths per frame"};
constexpr auto kZoomRate =
    Param<int>{"ZoomRate", 4, {-50, 100}, "zoom from frame to frame; 0 switches the effect off"}.in(
        "percent");

// The bits that are mixed: all of blue, and the upper six of green and red, so that sums of four, shifted by
// two, never reach the next byte.
constexpr u32 kMixedBits = 0xFCFCFF;

// The affine map from the new picture to the previous one: where the first pixel comes from, and the step to
// the next pixel of the row, in 16.16 fixed point that wraps around. The next row's step is at right angles.
struct Warp {
    u32 startX;
    u32 startY;
    u32 stepX;
    u32 stepY;

    Warp row(int y) const { return {startX - u32(y) * stepY, startY + u32(y) * stepX, stepX, stepY}; }
};

void mixRow(const u8* src, u8* dst, const u8* previous, u32* next, pixels::Extent size, Warp warp, int y)
{
    const int last = size.width * size.height - 1;
    src += std::ptrdiff_t(y) * size.width * 4;
    dst += std::ptrdiff_t(y) * size.width * 4;
    next += std::ptrdiff_t(y) * size.width;
#pragma GCC ivdep
    for (int x = 0; x < size.width; ++x) {
        const i32 column = i32(warp.startX + u32(x) * warp.stepX) >> 16;
        const i32 row = i32(warp.startY + u32(x) * warp.stepY) >> 16;
        const int index = std::min(std::max(row * size.width + column, 0), last);
        const u32 old = pixels::wordAt(previous, index);
        const u32 mixed = (3 * (old & kMixedBits) + (pixels::wordAt(src, x) & kMixedBits)) >> 2;
        next[x] = mixed;
        const u32 shown = mixed | 0xFF000000;
        std::memcpy(dst + std::ptrdiff_t(x) * 4, &shown, sizeof shown);
    }
}

class CVertigoFilter final : public CPureCEffect {
public:
    CVertigoFilter(u32 w, u32 h) : CPureCEffect(w, h) { declare(kPhaseIncrement, kZoomRate); }

    void processFrame(const u8* src, u8* dst) override
    {
        const double zoom = get(kZoomRate) / 100.0 + 1;
        const std::size_t pixelCount = std::size_t(width()) * height();
        if (get(kZoomRate) == 0 || zoom == 0 || (!buffers_ && !buffers_.allocate(2 * pixelCount))) {
            pixels::rows::copy(input(src), output(dst));
            return;
        }
        const Warp warp = warpAt(phase_, zoom);
        phase_ += get(kPhaseIncrement) / 100.0;
        if (phase_ > 5'700'000)
            phase_ = 0;
        mix(src, dst, warp);
        current_ ^= 1;
    }

private:
    Warp warpAt(double phase, double zoom) const
    {
        const double x = width() >> 1;
        const double y = height() >> 1;
        const double scale = (x * x + y * y) * zoom;
        const double swing = std::sin(phase * 1.9 + 5) * 5 + std::sin(phase) * 10;
        double along;
        double across;
        if (width() > height()) {
            const double t = pixels::clamped(swing, -x, x);
            along = ((x - std::abs(t)) * x + y * y) / scale;
            across = y * t / scale;
        } else {
            const double t = pixels::clamped(swing, -y, y);
            along = ((y - std::abs(t)) * y + x * x) / scale;
            across = x * t / scale;
        }
        const auto fixed = [](double v) { return u32(pixels::truncated(v * 65536)); };
        return {.startX = fixed(std::cos(phase * 5) * 2 + (y * across - x * along + x)),
            .startY = fixed(std::sin(phase * 6) * 2 + (y - (y * along + x * across))),
            .stepX = fixed(along),
            .stepY = fixed(across)};
    }

    void mix(const u8* src, u8* dst, const Warp& warp)
    {
        const std::size_t pixelCount = std::size_t(width()) * height();
        const u8* const previous = reinterpret_cast<const u8*>(buffers_.data() + (current_ ? pixelCount : 0));
        u32* const next = buffers_.data() + (current_ ? 0 : pixelCount);
        const pixels::Extent size = extent();
        pixels::rows::anyOrderRuns(size, [=](int top, int end) {
            pixels::widest([=] {
                for (int y = top; y < end; ++y)
                    mixRow(src, dst, previous, next, size, warp.row(y), y);
            });
        });
    }

    pixels::Buffer<u32> buffers_; ///< the previous output, and room for the next one
    int current_ = 0;
    double phase_ = 0;
};

const Registration<CVertigoFilter> registered{{
    .guid = "98DA6C30-55AD-4164-9FF5-53D535E719B8",
    .name = "vertigo",
    .title = "Vertigo",
    .family = "temporal",
    .summary = "Frames spiral away into a turning, zooming trail.",
    .history = {History::kFromStart},
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
