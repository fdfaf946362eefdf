// A filter node around one GPU effect, as a descriptor file describes it.
#pragma once

#include "effects/gpu/GpuEffect.h"
#include "effects/gpu/uniforms.h"
#include "effects/shader/ShaderDescriptor.h"
#include "model/CSimpleEffect.h"

namespace shader {

// Parameters of every shader effect, and the frame rate of those with particles. Hosts add the undeclared
// ones.
inline constexpr KEXSDK::Param<float> kRotate =
    KEXSDK::Param<float>{"stRotate", 0.0f, {-360, 360}, "turns the picture clockwise about its middle"}
        .titled("Picture Rotation")
        .in("degrees")
        .undeclared();
inline constexpr auto kScale = KEXSDK::ArrayParam<float>{"stScale", {1, 1}, 2, {-4, 4},
    "enlarges the picture about its middle, across and down"}
                                   .titled("Picture Scale");
inline constexpr auto kTranslate = KEXSDK::ArrayParam<float>{"stTranslate", {0, 0}, 2,
    {-pixels::kLargestSide, pixels::kLargestSide}, "moves the picture right and down", "pixels"}
                                       .titled("Picture Shift");
inline constexpr KEXSDK::Param<float> kFrameRate =
    KEXSDK::Param<float>{"u_frame_rate", 25.0f, {1, 240}, "steps of particle scenes"}
        .in("frames per second")
        .readingAs(25.0f)
        .undeclared();

} // namespace shader

namespace KEXSDK {

/// Inputs and extra textures share one row of texture units: input i, or the texture of index i, is the
/// sampler "mSample" + i. Uniforms take their values from the parameters of their names.
class CSimpleShaderEffect : public CSimpleEffect {
public:
    /// @param descriptorPath  read by init()
    CSimpleShaderEffect(u32 width, u32 height, std::string descriptorPath);

    /// Reads the descriptor and makes the GPU effect. Without either the node passes input 0 through.
    void init() override;

    u32 getInputCount() override { return inputCount_; }

    /// Draws one frame. When that is not possible the output is a copy of input 0, and the reason stands in
    /// the log once.
    void run() override;

protected:
    /// Null until init() has made it.
    TovEffectBase* gpuEffect() const { return gpu_.get(); }

private:
    void bindTextures();
    void placePicture();
    void setTime();
    void copyFirstInput();
    void reportProblem();

    std::string descriptorPath_;
    shader::DescriptorPtr descriptor_;
    u32 inputCount_ = 1;
    GpuEffect gpu_;
    BoundInputs boundInputs_;
    bool reported_ = false;
};

/// The shader effect that the engine makes: parameters whose names begin with "." or ":" set attributes of
/// its particles and are not stored here.
class CPaticalUniverseEffect final : public CSimpleShaderEffect {
public:
    using CSimpleShaderEffect::CSimpleShaderEffect;

    bool setParamVariant(const char* name, std::unique_ptr<ParamVariant>& value) override;
};

} // namespace KEXSDK
