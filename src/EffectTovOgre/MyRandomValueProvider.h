// Random values for particle templates: a fixed sequence, so that every run draws the same picture.
#pragma once

#include "core/Random.h"

#include <OgreMath.h>

namespace KEXSDK {

/// Every provider has a sequence of its own, so that what one effect draws does not depend on another.
class MyRandomValueProvider : public Ogre::Math::RandomValueProvider {
public:
    /// The next value, 0 and 1 included.
    Ogre::Real getRandomUnit() override;
    /// Starts the sequence anew.
    virtual void reset();

private:
    pixels::RandomGenerator generator_;
};

/// While it lives, OGRE's random numbers come from a sequence; afterwards from OGRE's own generator.
class RandomNumbersOf {
public:
    explicit RandomNumbersOf(MyRandomValueProvider& sequence)
    {
        Ogre::Math::SetRandomValueProvider(&sequence);
    }
    RandomNumbersOf(const RandomNumbersOf&) = delete;
    RandomNumbersOf& operator=(const RandomNumbersOf&) = delete;
    ~RandomNumbersOf() { Ogre::Math::SetRandomValueProvider(nullptr); }
};

} // namespace KEXSDK
