// The viewfinder of a camcorder, whose recording light blinks.
#include "effects/cpu/OverlayPicture.h"
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"

#include <atomic>

namespace KEXSDK {
namespace {

constexpr u32 kFramesPerPhase = 12;

/// Frames that all nodes of this kind have shown; the light blinks by this count and not by the time.
std::atomic<u32> framesShown = 0;

class CCamRecorderFilter final : public CPureCEffect {
public:
    using CPureCEffect::CPureCEffect;

    void processFrame(const u8* src, u8* dst) override
    {
        const CEffectImage* const on = on_.at(extent());
        const CEffectImage* const off = off_.at(extent());
        const u32 phase = framesShown.fetch_add(1, std::memory_order_relaxed) / kFramesPerPhase;
        layOver(input(src), output(dst), phase % 2 ? off : on, 0, [](pixels::Bgra p) { return p; });
    }

private:
    OverlayPicture on_{{"CamcorderOn16_9.png", "CamcorderOn4_3.png"}};
    OverlayPicture off_{{"CamcorderOff16_9.png", "CamcorderOff4_3.png"}};
};

const Registration<CCamRecorderFilter> registered{{
    .guid = "44F89F06-AF33-4630-AF91-19D266FE382C",
    .name = "camcorder",
    .title = "Camcorder",
    .family = "overlay",
    .summary = "The viewfinder of a camcorder with a blinking recording light.",
    .shared = true,
    .alpha = Alpha::opaque,
}};

} // namespace
} // namespace KEXSDK
