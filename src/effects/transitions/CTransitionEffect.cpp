// One frame of a transition node.
#include "effects/transitions/CTransitionEffect.h"

#include "pixels/StableInput.h"

namespace KEXSDK {

void CTransitionEffect::run()
{
    CEffectImage* const from = getInputImage(0);
    CEffectImage* const to = getInputImage(1);
    if (!from || !to || !fits(*from) || !fits(*to))
        return;
    const pixels::View output = getOutputImage()->view();
    // An input may be the output's memory.
    const pixels::StableInput first(from->view(), output);
    const pixels::StableInput second(to->view(), output);
    if (!first.view().bytes() || !second.view().bytes())
        return;
    transitions::TransitionFrame frame{i32(width()), i32(height()), i32(width() * 4), 32, 0, 0};
    getParamFloatValue(kTotalTime.name, &frame.totalTime, 0);
    getParamFloatValue(kGlobalTime.name, &frame.time, 0);
    algorithm_(output.bytes(), first.view().bytes(), second.view().bytes(), &frame);
}

} // namespace KEXSDK
