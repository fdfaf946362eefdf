// Glow: the picture screened with its own blur, which spreads the highlights.
#include "effects/cpu/CSquareBlur.h"
#include "model/EffectRegistry.h"
#include "pixels/StableInput.h"

namespace KEXSDK {
namespace {

constexpr auto kBlur =
    Param<int>{"Blur", 10, {0, 100}, "reach of the glow, 100 for half of the longer side"}.titled("Reach").in(
        "percent");

// x / 255 for x up to 255 * 255; a general division's 64-bit product has no room in a vector lane.
constexpr u32 dividedBy255(u32 x) { return x * 0x8081u >> 23; }
static_assert([] {
    for (u32 x = 0; x <= 255 * 255; ++x) {
        if (dividedBy255(x) != x / 255)
            return false;
    }
    return true;
}());

constexpr u8 screen(u8 a, u8 b) { return u8(255 - dividedBy255(u32(255 - a) * u32(255 - b))); }

class CGlow final : public CSquareBlur {
public:
    CGlow(u32 w, u32 h) : CSquareBlur(w, h) { declare(kBlur); }

    void processFrame(const u8* src, u8* dst) override
    {
        using pixels::Bgra;
        const pixels::StableInput stable(input(src), output(dst));
        const pixels::ConstView picture = stable.view();
        if (!picture.bytes())
            return;
        const int blur = get(kBlur);
        int size;
        if (!getParamIntValue(kSize.name, &size, 0) || size != blur)
            setParamIntValue(kSize.name, blur);
        CSquareBlur::processFrame(src, dst);
        pixels::rows::map2(picture, output(dst), output(dst), [](Bgra p, Bgra blurred) {
            return Bgra{screen(p.b, blurred.b), screen(p.g, blurred.g), screen(p.r, blurred.r),
                screen(p.a, blurred.a)};
        });
    }
};

const Registration<CGlow> registered{{
    .guid = "25E4478A-C617-4c60-B95A-F378D2923E17",
    .name = "glow",
    .title = "Glow",
    .family = "blur",
    .summary = "Brightens the picture with its own blur, so that highlights spread.",
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
