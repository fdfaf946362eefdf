// Ripples: a pointed drop falls on the water in every frame.
#include "effects/cpu/WaterSurface.h"
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/numbers.h"

#include <cmath>

namespace KEXSDK {
namespace {

constexpr auto kRadius =
    Param<int>{"Radius", 71, {1, 400}, "radius of a drop"}.titled("Drop Radius").in("pixels");
constexpr auto kHeight =
    Param<int>{"Height", 349, {0, 2000}, "steepness of a drop; steps of 32"}.titled("Drop Steepness");

constexpr int kDamping = 4;

class CWaterRipple : public CPureCEffect {
public:
    CWaterRipple(u32 w, u32 h) : CPureCEffect(w, h), water_(extent(), kDamping) { declare(kRadius, kHeight); }

    void processFrame(const u8* src, u8* dst) override
    {
        if (water_.ready())
            simulateStep(src, dst);
        else
            pixels::rows::copy(input(src), output(dst));
    }

    /// One drop falls, the picture is drawn through the water, the waves take one step.
    virtual void simulateStep(const u8* src, u8* dst)
    {
        const int radius = get(kRadius);
        const float steepness = float(get(kHeight) >> 5);
        const int y = random_.below(int(height()));
        const int x = random_.below(int(width()));
        water_.press({x, y}, radius, [=](i64 d2) {
            const int distance = int(std::sqrt(double(d2)));
            return pixels::truncated(float(radius - distance) * steepness);
        });
        water_.renderAndStep(input(src), output(dst));
    }

private:
    pixels::WaterSurface water_;
    pixels::WaterRandom random_;
};

const Registration<CWaterRipple> registered{{
    .guid = "87E372F5-44F1-45aa-8C6E-BC3762CA7798",
    .name = "water-ripple",
    .title = "Water Ripple",
    .family = "distortion",
    .summary = "The picture lies under restless water.",
    .history = {History::kFromStart},
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
