// The effect class that the render thread makes: a picture, and particles in front of it.
#pragma once

#include "EffectTovOgre/MyRandomValueProvider.h"
#include "EffectTovOgre/TovOgreEffectBase.h"
#include "model/CEffectBaseParam.h"
#include "particles/ParticleScene.h"

#include <optional>
#include <string>

namespace KEXSDK {

/// Without a particle template it is its base. Particles move by whole frames, from frame 0 on, and random
/// numbers come from a sequence of the scene's own: whatever way a host takes to a frame, the picture is the
/// same.
///
/// The parameter store holds attributes of the particles, named as particles/attributePath.h says. They reach
/// the scene with the next frame, and again when the scene begins anew.
class TovOgrePaticalUniverseEffect final : public TovOgreEffectBase, public CEffectBaseParam {
public:
    TovOgrePaticalUniverseEffect();
    ~TovOgrePaticalUniverseEffect() override;

    void render(_ImageParam** output, u8* buffer, u32 channels) override;
    void destroyScene() override;

private:
    void createScene() override;
    void restartScene() override;
    bool hasParticles() const override { return !particleTemplate.empty() && !leftOut_; }
    void applyShaderParameters() override;
    /// Moves the particles on by one frame, and draws only the frame that was asked for.
    void renderFrame() override;

    void setAttributes();
    /// Ends the scene for good, with a line in the log; the picture is drawn without it.
    void leaveOut(const char* reason);
    /// Sets the current frame to the last one that this request may simulate.
    void stopInReach();

    const std::string instanceName_;
    std::optional<particles::ParticleScene> scene_;
    MyRandomValueProvider sequence_;
    u32 wantedFrame_ = 0;
    bool leftOut_ = false; ///< there is no such template, or it cannot be simulated
    bool stopReported_ = false;
};

} // namespace KEXSDK
