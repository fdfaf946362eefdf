// The textured rectangle through which a GPU effect shows its inputs.
#pragma once

#include "EffectTovOgre/ShownTextures.h"
#include "EffectTovOgre/TovOgreShader.h"
#include "core/Types.h"

#include <OgreMaterial.h>
#include <OgreMesh.h>
#include <OgreTexture.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ogre {
class Camera;
class Entity;
class SceneNode;
class TextureUnitState;
} // namespace Ogre

namespace KEXSDK {

/// A plane that fills a 4:3 view at distance 1010, one material with one pass, one texture unit per input:
/// unit n holds the input with the n-th index. Render thread only; destroyed before the camera and the node.
class TovOgrePicturePlane {
public:
    TovOgrePicturePlane(const Ogre::Camera& camera, Ogre::SceneNode& parent, u32 maxTextureSize);
    TovOgrePicturePlane(const TovOgrePicturePlane&) = delete;
    TovOgrePicturePlane& operator=(const TovOgrePicturePlane&) = delete;
    virtual ~TovOgrePicturePlane();

    // Programs and their values: these functions hand on to the shader.

    virtual std::string setShaderProgram(const char* text, bool isFragment, bool isSourceText);
    virtual void getShaderParameters(ShaderParameters& list) const;
    virtual void setParam(u32 programType, const char* name, const Ogre::ColourValue& value);
    virtual void setIntArrayParam(
        u32 programType, const char* name, const i32* values, u32 count, u32 multiple);
    virtual void setDoubleArrayParam(
        u32 programType, const char* name, const double* values, u32 count, u32 multiple);
    virtual void setFloatArrayParam(
        u32 programType, const char* name, const float* values, u32 count, u32 multiple);
    virtual void setParam(u32 programType, const char* name, const Ogre::Matrix4* values, u32 count);
    virtual void setParam(u32 programType, const char* name, const Ogre::Matrix4& value);
    virtual void setParam(u32 programType, const char* name, const Ogre::Vector2& value);
    virtual void setParam(u32 programType, const char* name, const Ogre::Vector3& value);
    virtual void setParam(u32 programType, const char* name, const Ogre::Vector4& value);
    virtual void setFloatParam(u32 programType, const char* name, float value);
    virtual void setIntParam(u32 programType, const char* name, i32 value);
    std::string linkPrograms() { return shader_.link(); }

    /// Uploads pixels as the texture of an input: 4 bytes each, rows packed, slices packed. A depth above 1
    /// makes a 3D texture. Pictures too large for a texture are logged and left out. Throws an OGRE
    /// item-identity error when a side of a new input is 0.
    void setPictruePlaneImage(
        const u8* pixels, u32 width, u32 height, u32 depth, i32 index, Ogre::PixelFormat format);

    /// Shows a texture that someone else draws, without a copy.
    void setPictruePlaneImage(const Ogre::TexturePtr& texture, i32 index);
    /// Shows a copy of a texture's present content, for a texture that is about to be drawn into.
    void setPictruePlaneCopy(const Ogre::TexturePtr& texture, i32 index);

    /// Replaces a texture that someone else draws by a copy of its present content, wherever the plane shows
    /// it: it is about to go away.
    void keepCopyOf(const Ogre::TexturePtr& texture);
    /// Replaces the texture of one input in the same way.
    void keepCopyOf(i32 index);

    // For passes, whose last one the plane draws.

    /// The texture of every input, in the order of their indices.
    std::vector<Ogre::TexturePtr> pictures() const;
    /// The texture of one input; transparent black while there is none.
    Ogre::TexturePtr pictureOrBlank(i32 index);
    /// Shows these textures with each bind() from now on, instead of the inputs.
    void showInstead(std::vector<ShownTexture> textures) { instead_ = std::move(textures); }
    const Ogre::Mesh& mesh() const { return *mesh_; }

    /// Puts the pictures into the pass's units, the shader's programs into the pass, and its values into
    /// them.
    /// @param fillsFrame  whether the plane shows pictures of this size pixel for pixel
    void bind(u32 width, u32 height, bool fillsFrame);

    /// The node that carries the rectangle, a child of the plane node.
    Ogre::SceneNode& node() const { return *node_; }
    float width() const { return width_; }
    float height() const { return height_; }

private:
    struct Picture {
        Ogre::TexturePtr texture;
        bool own = false; ///< made here, and taken out of OGRE with the plane
    };

    bool fits(u32 width, u32 height) const;
    Picture& ownPicture(i32 index, u32 width, u32 height, u32 depth, Ogre::PixelFormat format);
    void drop(Picture& picture);
    void build(const Ogre::Camera& camera);
    void release();
    void bindPictures(u32 width, u32 height, bool fillsFrame);
    void bindPrograms();
    Ogre::Pass* pass() const;

    const std::string entityName_;
    const std::string materialName_;
    const std::string meshName_;
    u32 maxTextureSize_;
    float width_ = 0;
    float height_ = 0;
    Ogre::MaterialPtr material_;
    Ogre::MeshPtr mesh_;
    Ogre::SceneNode* parent_;
    Ogre::SceneNode* node_ = nullptr;
    Ogre::Entity* entity_ = nullptr;
    std::map<i32, Picture> pictures_;
    TovOgreShader shader_;
    bool programsBound_ = false;
    std::optional<std::vector<ShownTexture>> instead_;
    Picture blank_;
};

} // namespace KEXSDK
