// Hue rotation that keeps luminance.
#include "model/CRowEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/ColourMatrix.h"
#include "pixels/numbers.h"

namespace KEXSDK {
namespace {

constexpr auto kHue = Param<int>{"Hue", 95, {0, 100}, "position on the hue wheel; 50 keeps the hues"};

// The weights stand in byte order, blue first.
constexpr std::array<float, 3> kLuminance{0.3086f, 0.6094f, 0.082f};

int degreesOf(int hue)
{
    if (hue >= 0 && hue <= 50)
        return pixels::truncated(180 - hue / 50.0 * 180);
    if (hue > 50 && hue <= 100)
        return pixels::truncated((100 - hue) / 50.0 * 180 + 180);
    return 0;
}

class CHueShift final : public CRowEffect {
public:
    CHueShift(u32 w, u32 h) : CRowEffect(w, h) { declare(kHue); }

    void processRows(pixels::ConstView src, pixels::View dst, int) const override
    {
        pixels::mapMatrix(src, dst, matrix_);
    }

protected:
    void prepare() override { matrix_ = pixels::ColourMatrix::hueRotation(degreesOf(get(kHue)), kLuminance); }

private:
    pixels::ColourMatrix matrix_{};
};

const Registration<CHueShift> registered{{
    .guid = "12E5BC38-3508-44b0-AD1A-D0B37D19289F",
    .name = "hue-shift",
    .title = "Hue Shift",
    .family = "colour",
    .summary = "Turns all hues by one angle and keeps the luminance.",
    .byRows = true,
}};

} // namespace
} // namespace KEXSDK
