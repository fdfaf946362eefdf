// The passes of one effect, and how their pictures reach each other and the picture plane.
#pragma once

#include "EffectTovOgre/TovOgrePass.h"
#include "EffectTovOgre/TovOgrePicturePlane.h"

#include <deque>
#include <string>
#include <vector>

namespace KEXSDK {

/// The plane draws the last pass; those before it are drawn here. Render thread only; destroyed before the
/// plane.
class TovOgrePassChain {
public:
    /// @param passes  at least one, as a descriptor gives them
    TovOgrePassChain(
        std::vector<shader::DescriptorPass> passes, u32 effectNumber, TovOgrePicturePlane& plane);

    /// Makes all programs, the plane's included. @return the reason why one cannot be used, which names the
    /// pass, else empty
    std::string makePrograms();

    /// Adds the uniforms of the earlier passes, each with the number of its pass.
    void getShaderParameters(ShaderParameters& list) const;
    /// Hands the earlier passes their values; others are left out.
    void setShaderParameters(const ShaderParameters& list);

    /// Begins with transparent black where the last frame is shown.
    void forget();
    /// Draws all passes but the last for an effect of that size, and puts what the last one reads into the
    /// plane.
    void draw(Ogre::SceneManager& scene, u32 width, u32 height);

private:
    std::vector<ShownTexture> texturesOf(const shader::DescriptorPass& pass);
    Ogre::TexturePtr pictureOf(const shader::PassInput& input);

    const std::vector<shader::DescriptorPass> passes_;
    const std::string name_;
    TovOgrePicturePlane& plane_;
    std::deque<TovOgrePass> earlier_;
};

} // namespace KEXSDK
