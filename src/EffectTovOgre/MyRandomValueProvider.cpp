// The generator behind particle templates.
#include "EffectTovOgre/MyRandomValueProvider.h"

#include "pixels/Random.h"

Ogre::Real MyRandomValueProvider::getRandomUnit()
{
    constexpr Ogre::Real kLargest = 32767;
    return Ogre::Real(pixels::threadRandom().next()) / kLargest;
}

void MyRandomValueProvider::reset() { pixels::threadRandom().seed(1); }
