// Life and drawing of a node's GPU effect.
#include "EffectTovOgre/GpuEffect.h"

#include "EffectTovOgre/TovOgreRenderThread.h"

#include <utility>

GpuEffect& GpuEffect::operator=(GpuEffect&& other) noexcept
{
    GpuEffect previous;
    previous.effect_ = std::exchange(effect_, std::move(other.effect_));
    return *this;
}

GpuEffect::~GpuEffect()
{
    // With the render thread every scene has ended: none is started for this.
    if (effect_)
        TovOgreRenderThread::deleteEffect(effect_.get());
}

GpuEffect GpuEffect::create()
{
    GpuEffect made;
    made.effect_ = TovOgreRenderThread::getInstance().createSharedEffect();
    return made;
}

bool GpuEffect::draw(KEXSDK::CEffectImage& target) const
{
    if (!effect_)
        return false;
    KEXSDK::_ImageParam* record = target.record();
    return TovOgreRenderThread::evaluateEffect(effect_.get(), &record, nullptr) != 0 && effect_->drewFrame();
}
