// A gun sight over the grey picture.
#include "effects/cpu/OverlayPicture.h"
#include "model/CRowEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/numbers.h"

namespace KEXSDK {
namespace {

using pixels::Bgra;

class CSightFilter final : public CRowEffect {
public:
    using CRowEffect::CRowEffect;

    void processRows(pixels::ConstView src, pixels::View dst, int first) const override
    {
        layOver(src, dst, picture_, first, [](Bgra p) { return grey(p, pixels::third(p.b + p.g + p.r)); });
    }

protected:
    void prepare() override { picture_ = overlay_.at(extent()); }

private:
    const CEffectImage* picture_ = nullptr;
    OverlayPicture overlay_{{"Sight16_9.png", "Sight4_3.png"}};
};

const Registration<CSightFilter> registered{{
    .guid = "38E6C98E-7699-4f87-80EC-2F2D633E71B6",
    .name = "sight",
    .title = "Gun Sight",
    .family = "overlay",
    .summary = "A telescopic sight over a grey picture.",
    .alpha = Alpha::opaque,
    .byRows = true,
}};

} // namespace
} // namespace KEXSDK
