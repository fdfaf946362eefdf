// The whole picture as one run of rows.
#include "model/CRowEffect.h"

namespace KEXSDK {

bool CRowEffect::beginRows()
{
    const CEffectImage* const source = getInputImage(0);
    if (!source || !fits(*source))
        return false;
    prepare();
    return true;
}

void CRowEffect::processFrame(const u8* src, u8* dst)
{
    prepare();
    processRows(input(src), output(dst), 0);
}

} // namespace KEXSDK
