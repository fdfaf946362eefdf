// One fragment program that fills a texture for the programs after it.
#pragma once

#include "EffectTovOgre/ShownTextures.h"
#include "EffectTovOgre/TovOgreShader.h"
#include "core/Types.h"
#include "descriptors/DescriptorPass.h"

#include <OgreMaterial.h>
#include <OgreRenderOperation.h>

#include <array>
#include <span>
#include <string>

namespace Ogre {
class SceneManager;
class Viewport;
} // namespace Ogre

namespace KEXSDK {

/// Render thread only.
class TovOgrePass {
public:
    /// @param name         of its material and textures, which no other pass has
    /// @param readsItself  whether the program sees the picture of the frame before: there are two textures
    /// then
    TovOgrePass(std::string name, const shader::DescriptorPass& pass, bool readsItself);
    TovOgrePass(const TovOgrePass&) = delete;
    TovOgrePass& operator=(const TovOgrePass&) = delete;
    ~TovOgrePass();

    /// Reads, compiles and links the program. @return the reason why it cannot be used, else empty
    std::string makeProgram();
    TovOgreShader& shader() { return shader_; }
    const TovOgreShader& shader() const { return shader_; }

    /// Makes room for a picture at the pass's scale of an effect's of that size.
    void resize(u32 effectWidth, u32 effectHeight);
    /// Makes the picture of the last frame transparent black, if others may ask for it.
    void forget() { forgotten_ = pass_.persistent; }
    /// Call for all passes before the first one is drawn.
    void beginFrame();

    /// Draws the picture. @param plane  a rectangle around the origin
    void draw(Ogre::SceneManager& scene, Ogre::RenderOperation& plane, float planeWidth, float planeHeight,
        std::span<const ShownTexture> textures);

    /// What was drawn last.
    const Ogre::TexturePtr& picture() const { return targets_[latest_].texture; }

private:
    struct Target {
        Ogre::TexturePtr texture;
        Ogre::Viewport* viewport = nullptr;
    };

    std::span<Target> targets() { return std::span(targets_).first(readsItself_ ? 2 : 1); }
    Ogre::Pass& ogrePass() const;
    void makeMaterial();
    void release();

    const std::string name_;
    const shader::DescriptorPass pass_;
    const bool readsItself_;
    Ogre::MaterialPtr material_;
    TovOgreShader shader_;
    std::array<Target, 2> targets_;
    std::size_t latest_ = 0;
    bool forgotten_ = false;
    bool programsBound_ = false;
};

/// Gives the programs of a pass the values that the engine itself knows: what its samplers show, and the
/// sizes of the pictures that it draws and reads.
template <class Programs>
void setPassUniforms(Programs& programs, std::span<const ShownTexture> textures, u32 width, u32 height)
{
    std::vector<float> sizes;
    for (std::size_t n = 0; n < textures.size(); ++n) {
        programs.setIntParam(ShaderParameter::fragment, ("mSample" + std::to_string(n)).c_str(), i32(n));
        sizes.push_back(float(textures[n].texture->getWidth()));
        sizes.push_back(float(textures[n].texture->getHeight()));
    }
    programs.setFloatArrayParam(
        ShaderParameter::fragment, "u_input_resolution", sizes.data(), u32(textures.size()), 2);
    const float size[] = {float(width), float(height)};
    programs.setFloatArrayParam(ShaderParameter::fragment, "u_pass_resolution", size, 1, 2);
}

} // namespace KEXSDK
