// Makes and resizes textures so that a failure leaves nothing behind in OGRE.
#pragma once

#include "core/Types.h"

#include <OgreRenderSystem.h>
#include <OgreRenderTarget.h>
#include <OgreRoot.h>
#include <OgreTextureManager.h>

#include <string>
#include <vector>

namespace KEXSDK {

struct TextureSize {
    u32 width;
    u32 height;
    u32 depth = 1;
};

/// Takes the render targets of a texture whose making failed out of OGRE's list. A target that was registered
/// only in part outlives its buffer, and OGRE's end would destroy it through that buffer: it is leaked
/// instead.
inline void detachTargetsOf(const std::string& textureName)
{
    Ogre::RenderSystem& system = *Ogre::Root::getSingleton().getRenderSystem();
    std::vector<std::string> names;
    for (auto targets = system.getRenderTargetIterator(); targets.hasMoreElements();)
        if (const std::string& name = targets.getNext()->getName();
            name.starts_with("rtt/") && name.ends_with("/" + textureName))
            names.push_back(name);
    for (const std::string& name : names)
        system.detachRenderTarget(name);
}

/// A texture without mipmaps. When it cannot be made nothing is left under its name, which the next attempt
/// would find taken. Throws what OGRE throws.
inline Ogre::TexturePtr makeTexture(const std::string& name, Ogre::TextureType type, TextureSize size,
    Ogre::PixelFormat format, Ogre::TextureUsage usage)
{
    auto& textures = Ogre::TextureManager::getSingleton();
    try {
        return textures.createManual(
            name, Ogre::RGN_DEFAULT, type, size.width, size.height, size.depth, 0, format, usage);
    } catch (...) {
        if (const auto half = textures.getByName(name, Ogre::RGN_DEFAULT))
            textures.remove(half);
        detachTargetsOf(name);
        throw;
    }
}

/// Gives a texture another size and format; it keeps its name. When that fails it has no size, so that the
/// next attempt does not take it for done. Throws what OGRE throws.
inline void resizeTexture(Ogre::Texture& texture, TextureSize size, Ogre::PixelFormat format)
{
    texture.freeInternalResources();
    texture.setWidth(size.width);
    texture.setHeight(size.height);
    texture.setDepth(size.depth);
    texture.setFormat(format);
    try {
        texture.createInternalResources();
    } catch (...) {
        texture.freeInternalResources();
        detachTargetsOf(texture.getName());
        texture.setWidth(0);
        throw;
    }
}

} // namespace KEXSDK
