// One frame of a transition node.
#include "effects/transitions/CTransitionEffect.h"

namespace KEXSDK {

void CTransitionEffect::run()
{
    CEffectImage* const from = getInputImage(0);
    CEffectImage* const to = getInputImage(1);
    if (!from || !to || !fits(*from) || !fits(*to))
        return;
    TransitionFrame frame{i32(width()), i32(height()), i32(width() * 4), 32, 0, 0};
    getParamFloatValue(kTotalTime.name, &frame.totalTime, 0);
    getParamFloatValue(kGlobalTime.name, &frame.time, 0);
    algorithm_(getOutputImage()->pixels(), from->pixels(), to->pixels(), &frame);
}

} // namespace KEXSDK
