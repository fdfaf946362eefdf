// A filter node around one GPU effect, as a descriptor file describes it.
#pragma once

#include "descriptors/ShaderDescriptor.h"
#include "effects/gpu/GpuEffect.h"
#include "effects/gpu/uniforms.h"
#include "model/CSimpleEffect.h"

namespace shader {

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
    void takePrograms();
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
    float latestSeconds_ = 0; ///< of the time that was drawn last
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
