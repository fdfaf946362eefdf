// A GPU effect drawn with OGRE: camera, picture plane, render texture and the way back into memory.
#pragma once

#include "EffectTovOgre/MyRandomValueProvider.h"
#include "EffectTovOgre/ReadBack.h"
#include "EffectTovOgre/TovOgreBase.h"
#include "EffectTovOgre/TovOgrePassChain.h"
#include "EffectTovOgre/TovOgrePicturePlane.h"
#include "EffectTovOgre/UniformValues.h"
#include "graphics/TovEffectBase.h"

#include <OgreFrameListener.h>
#include <OgreQuaternion.h>

#include <optional>
#include <string>

namespace KEXSDK {

/// All effects share one scene manager. Each has two nodes of its own, one for the picture plane and one for
/// what stands in front of it, and shows nothing else while it draws.
///
/// A subclass that adds to the scene overrides createScene and restartScene, and destroyScene: that takes out
/// what was added, then calls the base's. Constructed on the render thread.
class TovOgreEffectBase : public TovEffectBase, public LiveEffect, public Ogre::FrameListener {
public:
    /// Throws when the graphics system is not up.
    TovOgreEffectBase();
    ~TovOgreEffectBase() override;

    void render(_ImageParam** output, u8* buffer, u32 channels) override;
    void getPixels(_ImageParam* record, u8* buffer, u32 channels) override;
    ShaderParameters* getShaderParameters() override;
    void setShaderParameters(const ShaderParameters& parameters) override;
    void setReadBackMode(ReadBackMode mode) override;
    void setPictureOnly(bool pictureOnly) override { pictureOnly_ = pictureOnly; }
    void setShaderSource(const char* text, bool isFragment, bool isSourceText) override;

    // Values of uniforms by name. A value is converted to the type that the program declares; a name that it
    // lacks is skipped. Arrays stay the caller's and are read by every render.

    virtual void setParam(u32 programType, const char* name, const Ogre::ColourValue& value);
    /// @param count, multiple  elements, and values per element
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

protected:
    /// Makes the nodes of the plane and of what stands in front of it; the constructor calls the base's.
    virtual void createSceneNodes();
    /// Makes the programs, once; problem() says when that is not possible.
    virtual void createShader();
    /// Hands all values to the programs; called by every render.
    virtual void applyShaderParameters();
    /// Brings every input onto the plane.
    virtual void updateInputTextures();
    /// Copies the render texture into the record's memory.
    virtual void readPixels(_ImageParam& record);

public:
    void destroyScene() override;

protected:
    /// Makes the camera with its node; the constructor calls the base's.
    virtual void createCamera();
    /// Makes the render texture, unless there is one.
    virtual void createRenderTexture();
    /// Gives the render texture the effect's size; effects that show the texture take copies first.
    virtual void resizeRenderTexture();
    /// Brings the render texture to the effect's size and sets up its viewport. Throws an Ogre::Exception
    /// without a camera.
    virtual void resetViewports();
    /// Called by the first render, and after restartScene: build what stands in front of the picture.
    virtual void createScene() { }
    /// Takes away what createScene built; the scene then begins anew with frame 0.
    virtual void restartScene() { }
    /// Takes the camera out of the scene; from then on render draws nothing.
    virtual void destroyCamera();
    /// Draws the scene as it is at the current frame index. Random numbers come from the effect's own
    /// sequence while it runs.
    virtual void renderFrame();
    /// Whether frames depend on those before them; skipped ones are then drawn as well.
    virtual bool hasParticles() const { return !particleTemplate.empty(); }

    /// Valid until destroyScene.
    Ogre::SceneManager& sceneManager() const { return *environment_->sceneManager(); }
    Ogre::SceneNode& effectSceneNode() const { return *effectNode_; }
    /// Null once the window was closed.
    Ogre::Camera* camera() const { return camera_; }
    /// Without a camera it does nothing.
    void moveCamera(const Ogre::Vector3& position, const Ogre::Vector3& target);

private:
    struct ProgramText {
        std::string text;
        bool isSourceText = true;
    };

    bool frameStarted(const Ogre::FrameEvent& event) override;
    bool frameRenderingQueued(const Ogre::FrameEvent& event) override;
    void noticeClosedWindow();
    void textureEnds(const std::shared_ptr<Ogre::Texture>& texture) override;

    void buildScene();
    std::string makePrograms();
    std::string makePasses();
    void removeRenderTexture();
    bool isAlive(const Ogre::TexturePtr& texture) const;
    void prepareFrame();
    void fitPlane();
    void placePicture();
    void stepFrames();
    void drawThroughFrames(u32 first, u32 last);

    TovOgreBase* environment_; ///< null after destroyScene
    Ogre::SceneNode* effectNode_ = nullptr;
    Ogre::SceneNode* planeNode_ = nullptr;
    Ogre::SceneNode* cameraNode_ = nullptr;
    Ogre::Camera* camera_ = nullptr;
    Ogre::Viewport* viewport_ = nullptr;
    Ogre::TexturePtr renderTexture_;
    std::optional<TovOgrePicturePlane> plane_;
    std::optional<TovOgrePassChain> passChain_; ///< of an effect with passes, once its programs are made
    MyRandomValueProvider random_;

    bool listening_ = false;
    bool sceneCreated_ = false;
    bool shaderCreated_ = false;
    bool parametersListed_ = false;
    bool pictureOnly_ = false;
    bool fitPending_ = false;
    std::optional<ProgramText> vertexText_;
    std::optional<ProgramText> fragmentText_;
    UniformValues values_;
    ReadBack readBack_;

    float planeWidth_ = 0; ///< of the fitted picture, in scene units
    float planeHeight_ = 0;
    Ogre::Vector3 basePosition_ = Ogre::Vector3::ZERO;
    Ogre::Vector3 baseScale_ = Ogre::Vector3::UNIT_SCALE;
    Ogre::Quaternion baseOrientation_ = Ogre::Quaternion::IDENTITY;
};

} // namespace KEXSDK
