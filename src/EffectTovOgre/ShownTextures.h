// What the texture units of a pass show, one after another.
#pragma once

#include <OgrePass.h>
#include <OgreTexture.h>
#include <OgreTextureUnitState.h>

#include <span>
#include <vector>

namespace KEXSDK {

struct ShownTexture {
    Ogre::TexturePtr texture;
    bool nearest = false; ///< else its texels are mixed
    Ogre::TextureAddressingMode wrap = Ogre::TAM_CLAMP;
};

/// Puts the n-th texture into the n-th unit, making the units that are missing.
inline void showTextures(Ogre::Pass& pass, std::span<const ShownTexture> textures)
{
    while (pass.getNumTextureUnitStates() < textures.size()) {
        const ShownTexture& shown = textures[pass.getNumTextureUnitStates()];
        Ogre::TextureUnitState& unit = *pass.createTextureUnitState();
        const Ogre::FilterOptions filter = shown.nearest ? Ogre::FO_POINT : Ogre::FO_LINEAR;
        unit.setTextureFiltering(filter, filter, Ogre::FO_NONE); // there are no mipmaps
        unit.setTextureAddressingMode(shown.wrap);
    }
    for (std::size_t n = 0; n < textures.size(); ++n) {
        Ogre::TextureUnitState& unit = *pass.getTextureUnitState(Ogre::ushort(n));
        if (unit._getTexturePtr() != textures[n].texture)
            unit.setTexture(textures[n].texture);
    }
}

} // namespace KEXSDK
