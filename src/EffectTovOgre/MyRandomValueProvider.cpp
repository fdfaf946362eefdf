// The generator behind particle templates.
#include "EffectTovOgre/MyRandomValueProvider.h"

namespace KEXSDK {

Ogre::Real MyRandomValueProvider::getRandomUnit()
{
    constexpr Ogre::Real kLargest = 32767;
    return Ogre::Real(generator_.next()) / kLargest;
}

void MyRandomValueProvider::reset() { generator_.seed(1); }

} // namespace KEXSDK
