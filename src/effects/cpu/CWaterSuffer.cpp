// A blob swims over the picture on a path of sines and leaves a wake.
#include "effects/cpu/WaterSurface.h"
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"

#include <cmath>

namespace KEXSDK {
namespace {

constexpr int kDamping = 4;

constexpr u32 kTurn = 2048;
using WaveTable = std::array<i32, kTurn>;

// Values of a wave over a turn in 2048 steps, in 16.16 fixed point.
template <class Wave> WaveTable tableOf(Wave wave)
{
    WaveTable table;
    for (u32 i = 0; i < kTurn; ++i)
        table[i] = i32(wave(i * 0.0030679615757712823) * 65536);
    return table;
}

class CWaterSuffer : public CPureCEffect {
public:
    CWaterSuffer(u32 w, u32 h) : CPureCEffect(w, h), water_(extent(), kDamping) { }

    void processFrame(const u8* src, u8* dst) override
    {
        if (!water_.ready()) {
            pixels::rows::copy(input(src), output(dst));
            return;
        }
        if (!started_) {
            phaseX_ = random_.next() & (kTurn - 1);
            phaseY_ = random_.next() & (kTurn - 1);
            started_ = true;
        }
        simulateStep(src, dst);
    }

    /// The blob moves on, the picture is drawn through the water, the waves take one step.
    virtual void simulateStep(const u8* src, u8* dst)
    {
        const pixels::Point at{position(phaseX_, 349, 65, width()), position(phaseY_, 377, 84, height())};
        phaseX_ += 13;
        phaseY_ += 12;
        press({(before_.x + at.x) >> 1, (before_.y + at.y) >> 1}, 3, -1200);
        press(at, 4, -2000);
        before_ = at;
        water_.renderAndStep(input(src), output(dst));
    }

private:
    i32 sine(u64 phase, u32 speed) const { return sines_[(phase * speed >> 8) % kTurn] >> 8; }

    int position(u64 phase, u32 speed, u32 otherSpeed, u32 extent) const
    {
        const int reach = (int(extent) - 8) >> 1;
        return (sine(phase, speed) * sine(phase, otherSpeed) * reach >> 16) + int(extent >> 1);
    }

    // A dent with the profile of a raised cosine, a quarter of `strength` deep.
    void press(pixels::Point centre, int radius, int strength)
    {
        const double stepsPerPixel = 1024.0 / radius;
        water_.press(centre, radius, [&](i64 d2) {
            const double squared = std::trunc(double(d2) * stepsPerPixel * stepsPerPixel);
            const u32 angle = u32(std::sqrt(squared));
            return (cosines_[angle % kTurn] + 0xFFFF) * strength >> 19;
        });
    }

    pixels::WaterSurface water_;
    pixels::WaterRandom random_;
    const WaveTable sines_ = tableOf([](double angle) { return std::sin(angle); });
    const WaveTable cosines_ = tableOf([](double angle) { return std::cos(angle); });
    u64 phaseX_ = 0;
    u64 phaseY_ = 0;
    bool started_ = false;
    pixels::Point before_{80, 80};
};

const Registration<CWaterSuffer> registered{{
    .guid = "AF1C5813-A7C2-4d6a-8AD7-95C3D70A8F78",
    .name = "water-surfer",
    .title = "Water Surfer",
    .family = "distortion",
    .summary = "Something swims over the picture and leaves a wake.",
    .history = {History::kFromStart},
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
