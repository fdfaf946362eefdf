// Random values for particle templates: a fixed sequence, so that every run draws the same picture.
#pragma once

#include "core/Types.h"

#include <OgreMath.h>

/// Numbers come from one generator per thread, that of the particles' effect being the render thread's.
class MyRandomValueProvider : public Ogre::Math::RandomValueProvider {
public:
    /// The next value, 0 and 1 included.
    Ogre::Real getRandomUnit() override;
    /// Starts the thread's sequence anew.
    virtual void reset();
};
