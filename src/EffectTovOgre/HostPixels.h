// The way of host pixels, blue first, into textures and out of them without a conversion by the driver.
#pragma once

#include "core/Types.h"

namespace Ogre {
class Texture;
}

namespace KEXSDK::hostPixels {

// A driver that keeps textures red first turns every pixel round on its way in and out, one after the other
// on one thread. These functions leave the bytes as they are instead. Render thread only.

/// Uploads a picture of the texture's size, rows packed. Where the driver keeps red first, blue lands in
/// red's place and samplers exchange the two.
/// @return false, with nothing done, when the texture is not one of 2D with 8 bits a colour, or the driver
/// would rather convert
bool upload(Ogre::Texture& texture, const u8* pixels, u32 width, u32 height);

/// Lets samplers see a texture's colours as they are stored, before something else than upload() fills it.
void showAsStored(Ogre::Texture& texture);

/// Reads the frame buffer's lower left rectangle, rows packed.
void read(u8* frame, u32 width, u32 height);

} // namespace KEXSDK::hostPixels
