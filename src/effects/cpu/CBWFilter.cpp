// Black and white: every pixel becomes the mean of its three colour bytes.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/rows.h"

namespace KEXSDK {
namespace {

using pixels::Bgra;

class CBWFilter final : public CPureCEffect {
public:
    using CPureCEffect::CPureCEffect;

    void processFrame(const u8* src, u8* dst) override
    {
        pixels::rows::map(input(src), output(dst), [](Bgra p) { return grey(p, u8((p.b + p.g + p.r) / 3)); });
    }
};

const Registration<CBWFilter> registered{{
    .guid = "DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A",
    .name = "black-and-white",
    .title = "Black and White",
    .family = "colour",
    .summary = "Grey from the mean of red, green and blue.",
}};

} // namespace
} // namespace KEXSDK
