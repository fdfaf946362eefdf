// Creates, ends and draws a node's GPU effect through the graphics system.
#include "effects/gpu/GpuEffect.h"

#include "graphics/GraphicsService.h"

#include <utility>

namespace KEXSDK {

GpuEffect& GpuEffect::operator=(GpuEffect&& other) noexcept
{
    GpuEffect previous;
    previous.effect_ = std::exchange(effect_, std::move(other.effect_));
    return *this;
}

GpuEffect::~GpuEffect()
{
    if (effect_)
        graphics().endEffect(*effect_);
}

GpuEffect GpuEffect::create()
{
    GpuEffect made;
    made.effect_ = graphics().createEffect();
    return made;
}

bool GpuEffect::draw(CEffectImage& target) const
{
    return effect_ && graphics().draw(*effect_, *target.record()) && effect_->drewFrame();
}

} // namespace KEXSDK
