// A large soft blur in two directions, which the GPU draws; without one the picture stays as it is.
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "model/nodeMaker.h"
#include "pixels/rows.h"

namespace KEXSDK {
namespace {

constexpr auto kRadius = Param<int>{"Radius", 50, {0, 200}, "reach of the blur"}.in("pixels");

constexpr const char* kBlurGuid = "1B967DBD-7E65-44cb-B2FC-782CE5D8CBFD";

// Runs two nodes of a descriptor file's blur, one down the picture and one across.
class CTriangleBlur final : public CPureCEffect {
public:
    CTriangleBlur(u32 w, u32 h)
        : CPureCEffect(w, h),
          down_(makeNode(kBlurGuid, w, h)),
          across_(down_ ? makeNode(kBlurGuid, w, h) : nullptr)
    {
        declare(kRadius);
        if (!across_)
            return;
        across_->connect(down_.get(), 0);
        setDirections();
    }

    void run() override
    {
        CEffectImage* const source = getInputImage(0);
        if (!source)
            return;
        if (!across_) {
            CPureCEffect::run();
            return;
        }
        if (paramsChanged)
            setDirections();
        down_->setInputImage(source, 0);
        across_->evaluateForReader(getOutputImage());
    }

    void processFrame(const u8* src, u8* dst) override { pixels::rows::copy(input(src), output(dst)); }

private:
    void setDirections()
    {
        const float radius = float(getParamInt(kRadius.name, kRadius.initial()));
        const float down[] = {0, radius / float(height())};
        const float across[] = {radius / float(width()), 0};
        down_->setParamFloatArrayValue("delta", down, 2);
        across_->setParamFloatArrayValue("delta", across, 2);
    }

    std::unique_ptr<CSimpleEffect> down_;
    std::unique_ptr<CSimpleEffect> across_;
};

const Registration<CTriangleBlur> registered{{
    .guid = "4BADD6CB-B71B-44ed-8737-9F3DE9634C31",
    .name = "triangle-blur",
    .title = "Triangle Blur",
    .family = "blur",
    .summary = "A large soft blur drawn by the GPU; without one the picture stays as it is.",
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
