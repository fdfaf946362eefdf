// Night-vision goggles: a green picture behind their eyepieces.
#include "effects/cpu/OverlayPicture.h"
#include "model/CRowEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/numbers.h"

namespace KEXSDK {
namespace {

using pixels::Bgra;

class CNightGlassViewFilter final : public CRowEffect {
public:
    using CRowEffect::CRowEffect;

    void processRows(pixels::ConstView src, pixels::View dst, int first) const override
    {
        layOver(src, dst, picture_, first, [](Bgra p) {
            const u8 level = pixels::third(p.b + p.g + p.r);
            const u8 tint = pixels::third(level);
            return Bgra{tint, level, tint, 255};
        });
    }

protected:
    void prepare() override { picture_ = overlay_.at(extent()); }

private:
    const CEffectImage* picture_ = nullptr;
    OverlayPicture overlay_{{"NightGlassView16_9.png", "NightGlassView4_3.png"}};
};

const Registration<CNightGlassViewFilter> registered{{
    .guid = "886112EE-FEBC-4e57-A11F-945EA86F6BC0",
    .name = "night-vision",
    .title = "Night Vision",
    .family = "overlay",
    .summary = "The green picture and the eyepieces of night-vision goggles.",
    .alpha = Alpha::opaque,
    .byRows = true,
}};

} // namespace
} // namespace KEXSDK
