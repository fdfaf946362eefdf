// Pixel formats of image records, and what the installed OGRE calls them: its numbers differ between
// versions, its names do not.
#pragma once

#include "graphics/ImageParam.h"

#include <OgrePixelFormat.h>

namespace KEXSDK {

inline Ogre::PixelFormat ogreFormat(RecordFormat format)
{
    using enum RecordFormat;
    switch (format) {
    case A8R8G8B8:
        return Ogre::PF_A8R8G8B8;
    case A8B8G8R8:
        return Ogre::PF_A8B8G8R8;
    case R8G8B8A8:
        return Ogre::PF_R8G8B8A8;
    }
    return Ogre::PF_UNKNOWN;
}

} // namespace KEXSDK
