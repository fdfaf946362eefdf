// Runs a CPU effect: checks its input's size and calls the pixel routine.
#include "model/CPureCEffect.h"

namespace KEXSDK {

void CPureCEffect::run()
{
    const CEffectImage* const source = getInputImage(0);
    if (source && fits(*source))
        processFrame(source->pixels(), getOutputImage()->pixels());
}

void CPureCEffect::processFrame(const u8*, u8*) { }

} // namespace KEXSDK
