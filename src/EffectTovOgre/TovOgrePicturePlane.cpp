// Mesh, material and textures of the picture plane.
#include "EffectTovOgre/TovOgrePicturePlane.h"

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

#include <algorithm>
#include <iterator>

namespace {

std::string numbered(const char* name)
{
    return name + std::to_string(TovOgreBase::getInstance().counters.planes);
}

void copyInto(const Ogre::TexturePtr& from, const Ogre::TexturePtr& to)
{
    to->getBuffer()->blit(from->getBuffer());
}

} // namespace

TovOgrePicturePlane::TovOgrePicturePlane(
    const Ogre::Camera& camera, Ogre::SceneNode& parent, u32 maxTextureSize)
    : entityName_(numbered("TovOgrePicturePlane_")),
      materialName_(numbered("PlaneMaterialName_")),
      maxTextureSize_(maxTextureSize),
      parent_(&parent)
{
    const std::string meshName = numbered("TovOgrePicturePlaneRectange_");
    ++TovOgreBase::getInstance().counters.planes;

    material_ = Ogre::MaterialManager::getSingleton().create(materialName_, Ogre::RGN_DEFAULT);
    pass()->setCullingMode(Ogre::CULL_NONE);

    const float scale = camera.getDerivedPosition().distance(camera.getDerivedDirection()) * 10.0f
        / camera.getNearClipDistance();
    const Ogre::RealRect view = camera.getFrustumExtents();
    width_ = (view.right - view.left) * scale;
    height_ = (view.top - view.bottom) * scale;
    mesh_ = Ogre::MeshManager::getSingleton().createPlane(meshName, Ogre::RGN_DEFAULT,
        Ogre::Plane(Ogre::Vector3::UNIT_Z, 0), width_, height_, 1, 1, true, 1, 1, 1, Ogre::Vector3::UNIT_Y,
        Ogre::HardwareBuffer::HBU_STATIC_WRITE_ONLY, Ogre::HardwareBuffer::HBU_STATIC_WRITE_ONLY, true, true);
    entity_ = parent.getCreator()->createEntity(entityName_, mesh_);
    entity_->setMaterial(material_);
    node_ = parent.createChildSceneNode(entityName_);
    node_->attachObject(entity_);
    node_->translate(0, 0, camera.getDerivedDirection().z, Ogre::Node::TS_WORLD);
}

TovOgrePicturePlane::~TovOgrePicturePlane()
{
    for (auto& [index, picture] : pictures_)
        drop(picture);
    node_->detachAllObjects();
    parent_->getCreator()->destroyEntity(entity_);
    parent_->removeAndDestroyChild(node_);
    Ogre::MeshManager::getSingleton().remove(mesh_);
    material_->removeAllTechniques();
    Ogre::MaterialManager::getSingleton().remove(material_);
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
    showFrom(index);
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

TovOgrePicturePlane::Picture& TovOgrePicturePlane::ownPicture(
    i32 index, u32 width, u32 height, u32 depth, Ogre::PixelFormat format)
{
    const auto known = pictures_.find(index);
    if (known != pictures_.end() && known->second.own) {
        Ogre::Texture& texture = *known->second.texture;
        if (texture.getWidth() != width || texture.getHeight() != height || texture.getDepth() != depth
            || texture.getFormat() != format) {
            texture.freeInternalResources();
            texture.setWidth(width);
            texture.setHeight(height);
            texture.setDepth(depth);
            texture.setFormat(format);
            texture.createInternalResources();
        }
        return known->second;
    }
    if (width == 0 || height == 0)
        OGRE_EXCEPT(Ogre::Exception::ERR_ITEM_NOT_FOUND, "You had not set image's size!",
            "TovOgrePicturePlane::setPictruePlaneImage");
    auto texture =
        Ogre::TextureManager::getSingleton().createManual(materialName_ + "_Texture" + std::to_string(index),
            Ogre::RGN_DEFAULT, depth == 1 ? Ogre::TEX_TYPE_2D : Ogre::TEX_TYPE_3D, width, height, depth, 0,
            format, Ogre::TU_STATIC_WRITE_ONLY);
    Picture& picture = pictures_[index] = {std::move(texture), true};
    showFrom(index);
    return picture;
}

void TovOgrePicturePlane::showFrom(i32 index)
{
    Ogre::Pass& units = *pass();
    while (units.getNumTextureUnitStates() < pictures_.size()) {
        Ogre::TextureUnitState& unit = *units.createTextureUnitState();
        unit.setTextureAddressingMode(Ogre::TextureUnitState::TAM_CLAMP);
        unit.setTextureFiltering(Ogre::FO_LINEAR, Ogre::FO_LINEAR, Ogre::FO_NONE); // there are no mipmaps
    }
    // A new index between others moves those behind it up.
    for (auto entry = pictures_.find(index); entry != pictures_.end(); ++entry)
        units.getTextureUnitState(Ogre::ushort(std::distance(pictures_.begin(), entry)))
            ->setTexture(entry->second.texture);
}

void TovOgrePicturePlane::drop(Picture& picture)
{
    if (picture.texture && picture.own) {
        picture.texture->freeInternalResources();
        Ogre::TextureManager::getSingleton().remove(picture.texture);
    }
    picture = {};
}

void TovOgrePicturePlane::bindPrograms()
{
    const std::string names = shader_.programName(false) + "\n" + shader_.programName(true);
    if (names == boundPrograms_)
        return;
    pass()->setVertexProgram(shader_.programName(false), true);
    pass()->setVertexProgramParameters(shader_.parameters(false));
    pass()->setFragmentProgram(shader_.programName(true), true);
    pass()->setFragmentProgramParameters(shader_.parameters(true));
    boundPrograms_ = names;
}
