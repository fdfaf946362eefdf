// Mesh, material and textures of the picture plane.
#include "EffectTovOgre/TovOgrePicturePlane.h"

#include "EffectTovOgre/HostPixels.h"
#include "EffectTovOgre/OgreTextures.h"
#include "EffectTovOgre/TovOgreBase.h"

#include <OgreCamera.h>
#include <OgreEntity.h>
#include <OgreHardwarePixelBuffer.h>
#include <OgreMaterialManager.h>
#include <OgreMeshManager.h>
#include <OgrePass.h>
#include <OgrePlane.h>
#include <OgreSceneManager.h>
#include <OgreSceneNode.h>
#include <OgreTechnique.h>
#include <OgreTextureManager.h>

namespace KEXSDK {

namespace {

std::string numbered(const char* name)
{
    return name + std::to_string(TovOgreBase::getInstance().counters.planes);
}

void copyInto(const Ogre::TexturePtr& from, const Ogre::TexturePtr& to)
{
    hostPixels::showAsStored(*to);
    to->getBuffer()->blit(from->getBuffer());
}

} // namespace

TovOgrePicturePlane::TovOgrePicturePlane(
    const Ogre::Camera& camera, Ogre::SceneNode& parent, u32 maxTextureSize)
    : entityName_(numbered("TovOgrePicturePlane_")),
      materialName_(numbered("PlaneMaterialName_")),
      meshName_(numbered("TovOgrePicturePlaneRectange_")),
      maxTextureSize_(maxTextureSize),
      parent_(&parent)
{
    ++TovOgreBase::getInstance().counters.planes;
    try {
        build(camera);
    } catch (...) {
        release();
        throw;
    }
}

TovOgrePicturePlane::~TovOgrePicturePlane() { release(); }

void TovOgrePicturePlane::build(const Ogre::Camera& camera)
{
    material_ = Ogre::MaterialManager::getSingleton().create(materialName_, Ogre::RGN_DEFAULT);
    pass()->setCullingMode(Ogre::CULL_NONE);

    const float scale = camera.getDerivedPosition().distance(camera.getDerivedDirection()) * 10.0f
        / camera.getNearClipDistance();
    const Ogre::RealRect view = camera.getFrustumExtents();
    width_ = (view.right - view.left) * scale;
    height_ = (view.top - view.bottom) * scale;
    mesh_ = Ogre::MeshManager::getSingleton().createPlane(meshName_, Ogre::RGN_DEFAULT,
        Ogre::Plane(Ogre::Vector3::UNIT_Z, 0), width_, height_, 1, 1, true, 1, 1, 1, Ogre::Vector3::UNIT_Y,
        Ogre::HardwareBuffer::HBU_STATIC_WRITE_ONLY, Ogre::HardwareBuffer::HBU_STATIC_WRITE_ONLY, true, true);
    entity_ = parent_->getCreator()->createEntity(entityName_, mesh_);
    entity_->setMaterial(material_);
    node_ = parent_->createChildSceneNode(entityName_);
    node_->attachObject(entity_);
    node_->translate(0, 0, camera.getDerivedDirection().z, Ogre::Node::TS_WORLD);
}

void TovOgrePicturePlane::release()
{
    for (auto& [index, picture] : pictures_)
        drop(picture);
    pictures_.clear();
    drop(blank_);
    instead_.reset();
    if (node_) {
        node_->detachAllObjects();
        parent_->removeAndDestroyChild(node_);
    }
    if (entity_) {
        entity_->_notifyAttached(nullptr); // building may have been cut short before the node knew of it
        parent_->getCreator()->destroyEntity(entity_);
    }
    // Mesh and material are looked up by name: they are there even when their making was cut short.
    auto& meshes = Ogre::MeshManager::getSingleton();
    if (const auto mesh = meshes.getByName(meshName_, Ogre::RGN_DEFAULT))
        meshes.remove(mesh);
    auto& materials = Ogre::MaterialManager::getSingleton();
    if (const auto material = materials.getByName(materialName_, Ogre::RGN_DEFAULT)) {
        material->removeAllTechniques();
        materials.remove(material);
    }
}

Ogre::Pass* TovOgrePicturePlane::pass() const { return material_->getTechnique(0)->getPass(0); }

bool TovOgrePicturePlane::fits(u32 width, u32 height) const
{
    if (width <= maxTextureSize_ && height <= maxTextureSize_)
        return true;
    TovOgreBase::log(
        "dimension is large max texture size " + std::to_string(maxTextureSize_) + "of supported");
    return false;
}

void TovOgrePicturePlane::setPictruePlaneImage(
    const u8* pixels, u32 width, u32 height, u32 depth, i32 index, Ogre::PixelFormat format)
{
    if (!pixels) {
        TovOgreBase::log("Image data is NULL!");
        return;
    }
    if (!fits(width, height))
        return;
    // Host records say A8B8G8R8 of bytes that are blue, green, red, alpha.
    if (format == Ogre::PF_A8B8G8R8)
        format = Ogre::PF_A8R8G8B8;
    const auto& texture = ownPicture(index, width, height, depth, format).texture;
    if (hostPixels::upload(*texture, pixels, width, height))
        return;
    const auto& buffer = texture->getBuffer();
    const Ogre::Box all(0, 0, 0, width, height, depth);
    buffer->blitFromMemory(Ogre::PixelBox(all, format, const_cast<u8*>(pixels)), all);
}

void TovOgrePicturePlane::setPictruePlaneImage(const Ogre::TexturePtr& texture, i32 index)
{
    if (!fits(texture->getWidth(), texture->getHeight()))
        return;
    Picture& picture = pictures_[index];
    if (picture.texture == texture)
        return;
    drop(picture);
    picture = {texture, false};
}

void TovOgrePicturePlane::setPictruePlaneCopy(const Ogre::TexturePtr& texture, i32 index)
{
    if (!fits(texture->getWidth(), texture->getHeight()))
        return;
    copyInto(texture,
        ownPicture(
            index, texture->getWidth(), texture->getHeight(), texture->getDepth(), texture->getFormat())
            .texture);
}

void TovOgrePicturePlane::keepCopyOf(const Ogre::TexturePtr& texture)
{
    for (const auto& [index, picture] : pictures_)
        if (picture.texture == texture && !picture.own)
            keepCopyOf(index);
}

void TovOgrePicturePlane::keepCopyOf(i32 index)
{
    if (const auto shown = pictures_.find(index); shown != pictures_.end() && !shown->second.own)
        setPictruePlaneCopy(Ogre::TexturePtr(shown->second.texture), index);
}

TovOgrePicturePlane::Picture& TovOgrePicturePlane::ownPicture(
    i32 index, u32 width, u32 height, u32 depth, Ogre::PixelFormat format)
{
    const auto known = pictures_.find(index);
    if (known != pictures_.end() && known->second.own) {
        Ogre::Texture& texture = *known->second.texture;
        if (texture.getWidth() != width || texture.getHeight() != height || texture.getDepth() != depth
            || texture.getFormat() != format)
            resizeTexture(texture, {width, height, depth}, format);
        return known->second;
    }
    if (width == 0 || height == 0)
        OGRE_EXCEPT(Ogre::Exception::ERR_ITEM_NOT_FOUND, "You had not set image's size!",
            "TovOgrePicturePlane::setPictruePlaneImage");
    Picture& picture = pictures_[index];
    picture = {makeTexture(materialName_ + "_Texture" + std::to_string(index),
                   depth == 1 ? Ogre::TEX_TYPE_2D : Ogre::TEX_TYPE_3D, {width, height, depth}, format,
                   Ogre::TU_STATIC_WRITE_ONLY),
        true};
    return picture;
}

void TovOgrePicturePlane::bindPictures(u32 width, u32 height, bool fillsFrame)
{
    Ogre::Pass& units = *pass();
    while (units.getNumTextureUnitStates() < pictures_.size()) {
        Ogre::TextureUnitState& unit = *units.createTextureUnitState();
        unit.setTextureAddressingMode(Ogre::TextureUnitState::TAM_CLAMP);
    }
    Ogre::ushort number = 0;
    for (const auto& [index, picture] : pictures_) {
        // Where every place that is read is the middle of a texel, the nearest texel is what blending four of
        // them gives, and costs less. There are no mipmaps.
        const bool isExact = fillsFrame && picture.texture && picture.texture->getWidth() == width
            && picture.texture->getHeight() == height && shader_.readAtOwnPixelOnly(number);
        Ogre::TextureUnitState& unit = *units.getTextureUnitState(number++);
        const Ogre::FilterOptions filter = isExact ? Ogre::FO_POINT : Ogre::FO_LINEAR;
        unit.setTextureFiltering(filter, filter, Ogre::FO_NONE);
        if (picture.texture && unit._getTexturePtr() != picture.texture)
            unit.setTexture(picture.texture);
    }
}

void TovOgrePicturePlane::drop(Picture& picture)
{
    if (picture.texture && picture.own) {
        picture.texture->freeInternalResources();
        Ogre::TextureManager::getSingleton().remove(picture.texture);
    }
    picture = {};
}

std::vector<Ogre::TexturePtr> TovOgrePicturePlane::pictures() const
{
    std::vector<Ogre::TexturePtr> all;
    for (const auto& [index, picture] : pictures_)
        if (picture.texture)
            all.push_back(picture.texture);
    return all;
}

Ogre::TexturePtr TovOgrePicturePlane::pictureOrBlank(i32 index)
{
    if (const auto found = pictures_.find(index); found != pictures_.end() && found->second.texture)
        return found->second.texture;
    if (!blank_.texture) {
        blank_ = {makeTexture(materialName_ + "_Blank", Ogre::TEX_TYPE_2D, {1, 1}, Ogre::PF_A8R8G8B8,
                      Ogre::TU_STATIC_WRITE_ONLY),
            true};
        u8 nothing[4] = {};
        blank_.texture->getBuffer()->blitFromMemory(Ogre::PixelBox(1, 1, 1, Ogre::PF_A8R8G8B8, nothing));
    }
    return blank_.texture;
}

void TovOgrePicturePlane::bind(u32 width, u32 height, bool fillsFrame)
{
    if (instead_)
        showTextures(*pass(), *instead_);
    else
        bindPictures(width, height, fillsFrame);
    bindPrograms();
    // Loads the material here: OGRE would do so in the midst of drawing, and take a load that failed there
    // for complete.
    material_->load();
    shader_.sendValues();
}

void TovOgrePicturePlane::bindPrograms()
{
    if (programsBound_)
        return;
    pass()->setVertexProgram(shader_.programName(false), true);
    pass()->setVertexProgramParameters(shader_.parameters(false));
    pass()->setFragmentProgram(shader_.programName(true), true);
    pass()->setFragmentProgramParameters(shader_.parameters(true));
    programsBound_ = true;
}

std::string TovOgrePicturePlane::setShaderProgram(const char* text, bool isFragment, bool isSourceText)
{
    return shader_.setShaderProgram(text, isFragment, isSourceText);
}

void TovOgrePicturePlane::getShaderParameters(ShaderParameters& list) const
{
    shader_.getShaderParameters(list);
}

void TovOgrePicturePlane::setParam(u32 programType, const char* name, const Ogre::ColourValue& value)
{
    shader_.setParam(programType, name, value);
}

void TovOgrePicturePlane::setIntArrayParam(
    u32 programType, const char* name, const i32* values, u32 count, u32 multiple)
{
    shader_.setIntArrayParam(programType, name, values, count, multiple);
}

void TovOgrePicturePlane::setDoubleArrayParam(
    u32 programType, const char* name, const double* values, u32 count, u32 multiple)
{
    shader_.setDoubleArrayParam(programType, name, values, count, multiple);
}

void TovOgrePicturePlane::setFloatArrayParam(
    u32 programType, const char* name, const float* values, u32 count, u32 multiple)
{
    shader_.setFloatArrayParam(programType, name, values, count, multiple);
}

void TovOgrePicturePlane::setParam(u32 programType, const char* name, const Ogre::Matrix4* values, u32 count)
{
    shader_.setParam(programType, name, values, count);
}

void TovOgrePicturePlane::setParam(u32 programType, const char* name, const Ogre::Matrix4& value)
{
    shader_.setParam(programType, name, value);
}

void TovOgrePicturePlane::setParam(u32 programType, const char* name, const Ogre::Vector2& value)
{
    shader_.setParam(programType, name, value);
}

void TovOgrePicturePlane::setParam(u32 programType, const char* name, const Ogre::Vector3& value)
{
    shader_.setParam(programType, name, value);
}

void TovOgrePicturePlane::setParam(u32 programType, const char* name, const Ogre::Vector4& value)
{
    shader_.setParam(programType, name, value);
}

void TovOgrePicturePlane::setFloatParam(u32 programType, const char* name, float value)
{
    shader_.setFloatParam(programType, name, value);
}

void TovOgrePicturePlane::setIntParam(u32 programType, const char* name, i32 value)
{
    shader_.setIntParam(programType, name, value);
}

} // namespace KEXSDK
