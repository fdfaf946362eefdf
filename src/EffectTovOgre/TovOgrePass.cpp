// Material, targets and drawing of a pass.
#include "EffectTovOgre/TovOgrePass.h"

#include "EffectTovOgre/OgreTextures.h"

#include <OgreDepthBuffer.h>
#include <OgreHardwarePixelBuffer.h>
#include <OgreMaterialManager.h>
#include <OgreRenderTexture.h>
#include <OgreSceneManager.h>
#include <OgreTechnique.h>
#include <OgreViewport.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace KEXSDK {

namespace {

u32 scaled(u32 side, double scale) { return u32(std::max(1L, std::lround(side * scale))); }

Ogre::RenderTarget& renderTarget(const Ogre::TexturePtr& texture)
{
    return *texture->getBuffer()->getRenderTarget();
}

} // namespace

TovOgrePass::TovOgrePass(std::string name, const shader::DescriptorPass& pass, bool readsItself)
    : name_(std::move(name)),
      pass_(pass),
      readsItself_(readsItself)
{
    try {
        makeMaterial();
    } catch (...) {
        release();
        throw;
    }
}

TovOgrePass::~TovOgrePass() { release(); }

void TovOgrePass::makeMaterial()
{
    material_ = Ogre::MaterialManager::getSingleton().create(name_, Ogre::RGN_DEFAULT);
    Ogre::Pass& pass = ogrePass();
    pass.setCullingMode(Ogre::CULL_NONE);
    pass.setDepthCheckEnabled(false);
    pass.setDepthWriteEnabled(false);
    pass.setLightingEnabled(false);
}

void TovOgrePass::release()
{
    // The material is looked up by name: it is there even when its making was cut short.
    auto& materials = Ogre::MaterialManager::getSingleton();
    if (const auto material = materials.getByName(name_, Ogre::RGN_DEFAULT)) {
        material->removeAllTechniques();
        materials.remove(material);
    }
    for (Target& target : targets_) {
        if (!target.texture)
            continue;
        if (target.viewport) // else the texture may have no memory
            renderTarget(target.texture).removeAllViewports();
        target.texture->freeInternalResources();
        Ogre::TextureManager::getSingleton().remove(target.texture);
        target = {};
    }
}

Ogre::Pass& TovOgrePass::ogrePass() const { return *material_->getTechnique(0)->getPass(0); }

std::string TovOgrePass::makeProgram()
{
    std::string reason;
    if (!pass_.shader.empty())
        reason = shader_.setShaderProgram(pass_.shader.c_str(), true, false);
    return reason.empty() ? shader_.link() : reason;
}

void TovOgrePass::resize(u32 effectWidth, u32 effectHeight)
{
    const TextureSize size{scaled(effectWidth, pass_.scale), scaled(effectHeight, pass_.scale)};
    const Ogre::PixelFormat format = pass_.halfFloats ? Ogre::PF_FLOAT16_RGBA : Ogre::PF_A8R8G8B8;
    for (Target& target : targets()) {
        if (target.viewport && target.texture->getWidth() == size.width
            && target.texture->getHeight() == size.height)
            continue;
        forget();
        if (target.texture) {
            if (target.viewport)
                renderTarget(target.texture).removeAllViewports();
            target.viewport = nullptr;
            resizeTexture(*target.texture, size, format);
        } else {
            target.texture = makeTexture(name_ + "_" + std::to_string(&target - targets_.data()),
                Ogre::TEX_TYPE_2D, size, format, Ogre::TU_RENDERTARGET);
        }
        Ogre::RenderTarget& drawn = renderTarget(target.texture);
        drawn.removeAllViewports();
        drawn.setAutoUpdated(false);
        drawn.setDepthBufferPool(Ogre::DepthBuffer::POOL_NO_DEPTH);
        target.viewport = drawn.addViewport(nullptr);
        target.viewport->setAutoUpdated(false);
    }
}

void TovOgrePass::beginFrame()
{
    if (!forgotten_)
        return;
    Ogre::RenderSystem& system = *Ogre::Root::getSingleton().getRenderSystem();
    for (const Target& target : targets()) {
        system._setViewport(target.viewport);
        system.clearFrameBuffer(Ogre::FBT_COLOUR, Ogre::ColourValue(0, 0, 0, 0));
    }
    forgotten_ = false;
}

void TovOgrePass::draw(Ogre::SceneManager& scene, Ogre::RenderOperation& plane, float planeWidth,
    float planeHeight, std::span<const ShownTexture> textures)
{
    const std::size_t next = readsItself_ ? 1 - latest_ : 0;
    const Target& target = targets_[next];
    Ogre::Pass& pass = ogrePass();
    showTextures(pass, textures);
    if (!programsBound_) {
        pass.setVertexProgram(shader_.programName(false), true);
        pass.setVertexProgramParameters(shader_.parameters(false));
        pass.setFragmentProgram(shader_.programName(true), true);
        pass.setFragmentProgramParameters(shader_.parameters(true));
        programsBound_ = true;
    }
    if (!pass_.shader.empty())
        setPassUniforms(shader_, textures, target.texture->getWidth(), target.texture->getHeight());
    material_->load();
    shader_.sendValues();
    // The rectangle covers all of the target, which therefore needs no clearing; and a frame of OGRE's would
    // ask the whole scene what is to be seen.
    const Ogre::Affine3 toEdges(
        Ogre::Vector3::ZERO, Ogre::Quaternion::IDENTITY, Ogre::Vector3(2 / planeWidth, 2 / planeHeight, 1));
    scene.manualRender(
        &plane, &pass, target.viewport, toEdges, Ogre::Affine3::IDENTITY, Ogre::Matrix4::IDENTITY, true);
    latest_ = next;
}

} // namespace KEXSDK
