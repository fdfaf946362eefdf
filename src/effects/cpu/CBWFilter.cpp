// Black and white: every pixel becomes the mean of its three colour bytes.
#include "model/CRowEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/rows.h"

namespace KEXSDK {
namespace {

using pixels::Bgra;

class CBWFilter final : public CRowEffect {
public:
    using CRowEffect::CRowEffect;

    void processRows(pixels::ConstView src, pixels::View dst, int) const override
    {
        pixels::rows::map(src, dst, [](Bgra p) { return grey(p, u8((p.b + p.g + p.r) / 3)); });
    }
};

const Registration<CBWFilter> registered{{
    .guid = "DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A",
    .name = "black-and-white",
    .title = "Black and White",
    .family = "colour",
    .summary = "Grey from the mean of red, green and blue.",
    .byRows = true,
}};

} // namespace
} // namespace KEXSDK
