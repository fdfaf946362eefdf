// A large soft blur in two directions, which the GPU draws; without one the picture stays as it is.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/rows.h"

namespace KEXSDK {
namespace {

constexpr auto kRadius = Param<int>{"Radius", 50, {0, 200}, "reach of the blur"}.in("pixels");

class CTriangleBlur final : public CPureCEffect {
public:
    CTriangleBlur(u32 w, u32 h) : CPureCEffect(w, h) { declare(kRadius); }

    void processFrame(const u8* src, u8* dst) override { pixels::rows::copy(input(src), output(dst)); }
};

const Registration<CTriangleBlur> registered{{
    .guid = "4BADD6CB-B71B-44ed-8737-9F3DE9634C31",
    .name = "triangle-blur",
    .title = "Triangle Blur",
    .family = "blur",
    .summary = "A large soft blur drawn by the GPU; without one the picture stays as it is.",
}};

} // namespace
} // namespace KEXSDK
