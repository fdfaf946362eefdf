// Lens bulge: inside the radius, pixels come from nearer the centre.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/numbers.h"
#include "pixels/sample.h"

#include <cmath>

namespace KEXSDK {
namespace {

constexpr auto kX = Param<int>{"X", 50, {0, 100}, "centre, from the left"}.titled("Centre X").in("percent");
constexpr auto kY = Param<int>{"Y", 50, {0, 100}, "centre, from the bottom"}.titled("Centre Y").in("percent");
constexpr Param<float> kRadius{"Radius", 1.0f, {0, 20}, "radius of the lens, in hundreds of pixels"};

class CFishEye final : public CPureCEffect {
public:
    CFishEye(u32 w, u32 h) : CPureCEffect(w, h) { declare(kX, kY, kRadius); }

    void processFrame(const u8* src, u8* dst) override
    {
        const int w = int(width());
        const int h = int(height());
        const float cx = float(pixels::truncated(get(kX) / 100.0 * w));
        const float cy = float(pixels::truncated(get(kY) / 100.0 * h));
        const float radius = float(pixels::truncated(get(kRadius) * 100));
        pixels::sample(input(src), output(dst), [=](int x, int y) -> pixels::Point {
            const float dx = float(x) - cx;
            const float dy = float(y) - cy;
            const float d = std::trunc(std::sqrt(dx * dx + dy * dy)) / radius;
            const int column = int(pixels::clamped(dx * d + cx, 0.0f, float(w - 1)));
            const int row = int(pixels::clamped(dy * d + cy, 0.0f, float(h - 1)));
            return {d <= 1 ? column : x, d <= 1 ? row : y};
        });
    }
};

const Registration<CFishEye> registered{{
    .guid = "A0DFCB73-9C3D-4d18-813E-8CC29D76D406",
    .name = "fish-eye",
    .title = "Fish Eye",
    .family = "distortion",
    .summary = "A round lens that magnifies toward its centre.",
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
