// Pictures at another size, scaled as the engine scales what it loads.
#include "EffectTovOgre/PictureCodecs.h"
#include "EffectTovOgre/PixelFormats.h"

#include <OgreImage.h>

#include <cstdlib>

namespace pictures {

bool scale(Decoded& picture, u32 width, u32 height)
{
    if (!picture.pixels || width == 0 || height == 0 || width > kMaxSide || height > kMaxSide)
        return false;
    if (picture.width == width && picture.height == height)
        return true;
    std::unique_ptr<u8[], Free> scaled(
        static_cast<u8*>(std::malloc(std::size_t{width} * height * 4))); // as Free releases it
    if (!scaled)
        return false;
    const Ogre::PixelFormat format = ogreFormat(KEXSDK::RecordFormat::A8R8G8B8);
    Ogre::Image::scale(Ogre::PixelBox(picture.width, picture.height, 1, format, picture.pixels.get()),
        Ogre::PixelBox(width, height, 1, format, scaled.get()), Ogre::Image::FILTER_BILINEAR);
    picture.pixels = std::move(scaled);
    picture.width = width;
    picture.height = height;
    return true;
}

} // namespace pictures
