// A node's GPU effect: made and ended by the graphics system, set up and drawn through this handle.
#pragma once

#include "graphics/TovEffectBase.h"
#include "model/CEffectImage.h"

#include <memory>

namespace KEXSDK {

/// Empty when there is no GPU. The effect's scene may end before the handle does, with the graphics system;
/// its set-up calls stay harmless then, and nothing is drawn any more.
class GpuEffect {
public:
    GpuEffect() = default;
    GpuEffect(GpuEffect&&) noexcept = default;
    GpuEffect& operator=(GpuEffect&& other) noexcept;
    /// Ends the effect.
    ~GpuEffect();

    static GpuEffect create();

    explicit operator bool() const { return bool(effect_); }
    TovEffectBase* operator->() const { return effect_.get(); }
    TovEffectBase* get() const { return effect_.get(); }

    /// Draws a frame into the image: its memory holds the picture when the call returns, and its record the
    /// texture. @return false, with the image as it was, when nothing could be drawn; problem() of the effect
    /// then says why if it is the fault of a program or picture
    bool draw(CEffectImage& target) const;

private:
    std::shared_ptr<TovEffectBase> effect_;
};

} // namespace KEXSDK
