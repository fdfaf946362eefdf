// A gun sight over the grey picture.
#include "effects/cpu/OverlayPicture.h"
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/numbers.h"

namespace KEXSDK {
namespace {

using pixels::Bgra;

class CSightFilter final : public CPureCEffect {
public:
    using CPureCEffect::CPureCEffect;

    void processFrame(const u8* src, u8* dst) override
    {
        layOver(input(src), output(dst), overlay_.at(extent()),
            [](Bgra p) { return grey(p, pixels::third(p.b + p.g + p.r)); });
    }

private:
    OverlayPicture overlay_{{"Sight16_9.png", "Sight4_3.png"}};
};

const Registration<CSightFilter> registered{{
    .guid = "38E6C98E-7699-4f87-80EC-2F2D633E71B6",
    .name = "sight",
    .title = "Gun Sight",
    .family = "overlay",
    .summary = "A telescopic sight over a grey picture.",
    .alpha = Alpha::opaque,
}};

} // namespace
} // namespace KEXSDK
