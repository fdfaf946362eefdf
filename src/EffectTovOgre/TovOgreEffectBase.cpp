// Life of an effect's scene, and its frames from drawing to memory.
#include "EffectTovOgre/TovOgreEffectBase.h"

#include "EffectTovOgre/OgreTextures.h"
#include "EffectTovOgre/PixelFormats.h"
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "core/DynClass.h"

#include <OgreCamera.h>
#include <OgreDepthBuffer.h>
#include <OgreHardwarePixelBuffer.h>
#include <OgreRenderTexture.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <OgreSceneManager.h>
#include <OgreSceneNode.h>
#include <OgreTextureManager.h>
#include <OgreViewport.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace KEXSDK {

namespace {

DYN_CLASS::CFactory<TovOgreEffectBase> factory;

/// The picture's distance from the camera, and the shape of the view that the plane, as built, fills there.
constexpr float kPictureDistance = 1010;
constexpr float kBuiltAspect = 1.3333334f;
constexpr float kUnitsPerNear = 202;
constexpr float kNearClipDistance = 5;

const Ogre::Vector3 kCameraPosition(0, 0, 100);

/// While it lives, OGRE draws frames into a target: one left so would be overwritten by every other effect.
/// The viewport may end meanwhile, with the window, and is null then.
class AutoUpdated {
public:
    AutoUpdated(Ogre::RenderTarget& target, Ogre::Viewport* const& viewport)
        : target_(target),
          viewport_(viewport)
    {
        set(true);
    }
    AutoUpdated(const AutoUpdated&) = delete;
    AutoUpdated& operator=(const AutoUpdated&) = delete;
    ~AutoUpdated() { set(false); }

private:
    void set(bool updated)
    {
        target_.setAutoUpdated(updated);
        if (viewport_)
            viewport_->setAutoUpdated(updated);
    }

    Ogre::RenderTarget& target_;
    Ogre::Viewport* const& viewport_;
};

/// While it lives, a viewport is a single pixel of its target, for frames that nobody sees.
class OnePixel {
public:
    OnePixel(Ogre::Viewport* const& viewport, u32 width, u32 height) : viewport_(viewport)
    {
        viewport_->setDimensions(0, 0, 1.0f / float(width), 1.0f / float(height));
    }
    OnePixel(const OnePixel&) = delete;
    OnePixel& operator=(const OnePixel&) = delete;
    ~OnePixel()
    {
        if (viewport_)
            viewport_->setDimensions(0, 0, 1, 1);
    }

private:
    Ogre::Viewport* const& viewport_;
};

} // namespace

TovOgreEffectBase::TovOgreEffectBase() : environment_(&TovOgreBase::getInstance())
{
    if (!environment_->initialisationSucceeded())
        throw std::runtime_error("There is no graphics system to draw with.");
    try {
        buildScene();
    } catch (...) {
        TovOgreEffectBase::destroyScene();
        throw;
    }
}

TovOgreEffectBase::~TovOgreEffectBase() { TovOgreEffectBase::destroyScene(); }

void TovOgreEffectBase::buildScene()
{
    id_ = ++environment_->counters.effects;
    environment_->addLiveEffect(this);
    Ogre::RenderWindow& window = *environment_->renderWindow();
    window.removeAllViewports();
    window.setAutoUpdated(false); // nothing is shown in it
    TovOgreEffectBase::createCamera();
    TovOgreEffectBase::createSceneNodes();
    plane_.emplace(*camera_, *planeNode_, environment_->capabilities().maxTextureSize);
    planeWidth_ = plane_->width();
    planeHeight_ = plane_->height();
    random_.reset();
}

void TovOgreEffectBase::createCamera()
{
    const std::string name = "PlayerCam_" + std::to_string(id_ - 1);
    cameraNode_ = sceneManager().getRootSceneNode()->createChildSceneNode(name);
    camera_ = sceneManager().createCamera(name);
    cameraNode_->attachObject(camera_);
    moveCamera(kCameraPosition, Ogre::Vector3::ZERO);
    camera_->setAspectRatio(float(width_) / float(height_));
    camera_->setNearClipDistance(kNearClipDistance);
}

void TovOgreEffectBase::createSceneNodes()
{
    const std::string number = std::to_string(id_ - 1);
    Ogre::SceneNode& root = *sceneManager().getRootSceneNode();
    effectNode_ = root.createChildSceneNode("effectSceneNodeName_" + number);
    planeNode_ = root.createChildSceneNode("effectPlaneNodeName_" + number);
}

void TovOgreEffectBase::moveCamera(const Ogre::Vector3& position, const Ogre::Vector3& target)
{
    if (!cameraNode_)
        return;
    cameraNode_->setPosition(position);
    cameraNode_->lookAt(target, Ogre::Node::TS_WORLD);
}

void TovOgreEffectBase::destroyScene()
{
    if (!environment_)
        return;
    drewFrame_ = false;
    removeRenderTexture();
    passChain_.reset();
    plane_.reset();
    Ogre::SceneNode& root = *sceneManager().getRootSceneNode();
    if (planeNode_)
        root.removeAndDestroyChild(planeNode_);
    if (effectNode_)
        root.removeAndDestroyChild(effectNode_);
    planeNode_ = effectNode_ = nullptr;
    inputs_.clear();
    removedInputs_.clear();
    values_.clear();
    readBack_.release();
    destroyCamera();
    environment_->removeLiveEffect(this);
    if (listening_)
        environment_->root()->removeFrameListener(this);
    listening_ = false;
    environment_ = nullptr;
}

void TovOgreEffectBase::destroyCamera()
{
    viewport_ = nullptr;
    if (renderTexture_)
        renderTexture_->getBuffer()->getRenderTarget()->removeAllViewports();
    if (cameraNode_) { // each may be there without the other, when building the scene was cut short
        cameraNode_->detachAllObjects();
        sceneManager().getRootSceneNode()->removeAndDestroyChild(cameraNode_);
    }
    if (camera_) {
        camera_->_notifyAttached(nullptr); // building may have been cut short before its node knew of it
        sceneManager().destroyCamera(camera_);
    }
    camera_ = nullptr;
    cameraNode_ = nullptr;
}

void TovOgreEffectBase::removeRenderTexture()
{
    viewport_ = nullptr;
    if (output_)
        output_->sharedBuffer.reset();
    if (!renderTexture_)
        return;
    environment_->announceEnd(renderTexture_);
    // The depth buffers are left alone: cleaning them up would spoil the frame that another effect draws
    // next.
    renderTexture_->getBuffer()->getRenderTarget()->removeAllViewports();
    renderTexture_->freeInternalResources(); // records may let the object itself go on another thread
    Ogre::TextureManager::getSingleton().remove(renderTexture_);
    renderTexture_.reset();
}

bool TovOgreEffectBase::frameStarted(const Ogre::FrameEvent&)
{
    noticeClosedWindow();
    return !windowClosed_;
}

bool TovOgreEffectBase::frameRenderingQueued(const Ogre::FrameEvent&)
{
    noticeClosedWindow();
    return !windowClosed_;
}

void TovOgreEffectBase::noticeClosedWindow()
{
    windowClosed_ = environment_->renderWindow()->isClosed();
    if (windowClosed_)
        destroyCamera();
}

void TovOgreEffectBase::setShaderSource(const char* text, bool isFragment, bool isSourceText)
{
    auto& program = isFragment ? fragmentText_ : vertexText_;
    if (text)
        program = ProgramText{text, isSourceText};
    else
        program.reset();
}

void TovOgreEffectBase::createShader()
{
    if (shaderCreated_)
        return;
    const std::string problem = passes.empty() ? makePrograms() : makePasses();
    shaderCreated_ = true; // an exception comes past this: the next render tries again
    if (problem.empty())
        return;
    TovOgreBase::log(problem);
    problem_ += (problem_.empty() ? "" : " ") + problem;
}

std::string TovOgreEffectBase::makePrograms()
{
    std::string problem;
    for (const bool isFragment : {false, true}) {
        const auto& program = isFragment ? fragmentText_ : vertexText_;
        if (!program)
            continue;
        const std::string reason =
            plane_->setShaderProgram(program->text.c_str(), isFragment, program->isSourceText);
        if (!reason.empty())
            problem += (problem.empty() ? "" : " ") + reason;
    }
    return problem.empty() ? plane_->linkPrograms() : problem;
}

std::string TovOgreEffectBase::makePasses()
{
    passChain_.emplace(passes, id_, *plane_);
    try {
        return passChain_->makePrograms();
    } catch (...) {
        passChain_.reset();
        throw;
    }
}

ShaderParameters* TovOgreEffectBase::getShaderParameters()
{
    if (!shaderParameters_.empty() || (parametersListed_ && !TovOgreRenderThread::isCurrent()))
        return environment_ ? &shaderParameters_ : nullptr;
    if (!TovOgreRenderThread::isCurrent()) {
        TovOgreRenderThread::prepareEffect(this);
        return parametersListed_ && environment_ ? &shaderParameters_ : nullptr;
    }
    if (!plane_) {
        TovOgreBase::log("shader had not been created!");
        return nullptr;
    }
    createShader();
    applyShaderParameters();
    ShaderParameters all;
    plane_->getShaderParameters(all);
    if (passChain_)
        passChain_->getShaderParameters(all);
    shaderParameters_ = std::move(all);
    parametersListed_ = true;
    return &shaderParameters_;
}

void TovOgreEffectBase::resetViewports()
{
    if (!camera_)
        OGRE_EXCEPT(Ogre::Exception::ERR_ITEM_NOT_FOUND, "Camera is null, You can not set render texture!",
            "TovOgreEffectBase::resetViewports");
    createRenderTexture();
    resizeRenderTexture();
    Ogre::RenderTarget& target = *renderTexture_->getBuffer()->getRenderTarget();
    target.removeAllViewports();
    target.setAutoUpdated(false);
    // The picture plane is behind everything else; without particles there is nothing to test depths of.
    target.setDepthBufferPool(
        hasParticles() ? Ogre::DepthBuffer::POOL_DEFAULT : Ogre::DepthBuffer::POOL_NO_DEPTH);
    viewport_ = target.addViewport(camera_);
    viewport_->setBackgroundColour(Ogre::ColourValue(0, 0, 0, 0));
    viewport_->setOverlaysEnabled(false);
    viewport_->setShadowsEnabled(false);
    viewport_->setSkiesEnabled(false);
    viewport_->setAutoUpdated(false);
    camera_->setAspectRatio(float(viewport_->getActualWidth()) / float(viewport_->getActualHeight()));
}

void TovOgreEffectBase::createRenderTexture()
{
    if (renderTexture_)
        return;
    renderTexture_ = makeTexture("RttTex" + std::to_string(id_ - 1), Ogre::TEX_TYPE_2D, {width_, height_},
        Ogre::PF_A8R8G8B8, Ogre::TU_RENDERTARGET);
}

void TovOgreEffectBase::resizeRenderTexture()
{
    if (renderTexture_->getWidth() == width_ && renderTexture_->getHeight() == height_)
        return;
    environment_->announceEnd(renderTexture_);
    renderTexture_->getBuffer()->getRenderTarget()->removeAllViewports();
    resizeTexture(*renderTexture_, {width_, height_}, Ogre::PF_A8R8G8B8);
}

bool TovOgreEffectBase::isAlive(const Ogre::TexturePtr& texture) const
{
    // The texture's effect may have ended; the texture manager then has it no more.
    return Ogre::TextureManager::getSingleton().getByName(texture->getName(), Ogre::RGN_DEFAULT) == texture;
}

void TovOgreEffectBase::textureEnds(const std::shared_ptr<Ogre::Texture>& texture)
{
    if (plane_ && texture != renderTexture_)
        plane_->keepCopyOf(Ogre::TexturePtr(texture));
}

void TovOgreEffectBase::updateInputTextures()
{
    for (const i32 index : removedInputs_)
        if (!inputs_.contains(index))
            plane_->keepCopyOf(index);
    removedInputs_.clear();
    for (auto& [index, input] : inputs_) {
        if (!input.texture) {
            if (input.changed)
                plane_->setPictruePlaneImage(
                    input.pixels, input.width, input.height, input.depth, index, ogreFormat(input.format));
            input.changed = !input.constant;
            continue;
        }
        const Ogre::TexturePtr texture(input.texture);
        if (!isAlive(texture))
            TovOgreBase::log("Image data is NULL!");
        else if (texture == renderTexture_)
            plane_->setPictruePlaneCopy(texture, index);
        else
            plane_->setPictruePlaneImage(texture, index);
    }
}

void TovOgreEffectBase::prepareFrame()
{
    if (!listening_)
        environment_->root()->addFrameListener(this);
    listening_ = true;
    if (sizeChanged_) {
        resetViewports();
        createOutputRecord(width_, height_);
        readBack_.prepare(width_, height_);
        fitPending_ = true;
    }
    if (!sceneCreated_) {
        createScene();
        sceneCreated_ = true;
        fitPending_ = true; // the camera may have moved
    }
    applyShaderParameters();
    updateInputTextures();
    sizeChanged_ = false;
    if (fitPending_)
        fitPlane();
    fitPending_ = false;
    placePicture();
    if (passChain_) {
        if (std::exchange(forgetful_, false))
            passChain_->forget();
        passChain_->draw(sceneManager(), width_, height_);
    }
    plane_->bind(width_, height_, transform == PictureTransform());
}

void TovOgreEffectBase::fitPlane()
{
    const float aspect = camera_->getAspectRatio() / kBuiltAspect;
    const float scale = kPictureDistance / camera_->getNearClipDistance() / kUnitsPerNear;
    baseScale_ = {aspect * scale, scale, 1};
    planeWidth_ = plane_->width() * baseScale_.x;
    planeHeight_ = plane_->height() * baseScale_.y;
    const Ogre::Vector3 direction = camera_->getDerivedDirection();
    basePosition_ = camera_->getDerivedPosition() + direction * kPictureDistance / direction.length();
    baseOrientation_ = camera_->getDerivedOrientation();
}

void TovOgreEffectBase::placePicture()
{
    Ogre::SceneNode& node = plane_->node();
    node.setScale(baseScale_ * Ogre::Vector3(transform.scale));
    node.setOrientation(baseOrientation_);
    node.setPosition(basePosition_);
    node.translate(transform.translation[0] / float(width_) * planeWidth_,
        transform.translation[1] / float(height_) * planeHeight_, transform.translation[2],
        Ogre::Node::TS_LOCAL);
    if (transform.angle != 0)
        node.rotate(Ogre::Vector3(transform.axis), Ogre::Degree(transform.angle), Ogre::Node::TS_LOCAL);
}

void TovOgreEffectBase::render(_ImageParam** output, u8* buffer, u32 channels)
{
    drewFrame_ = false;
    if (!environment_ || !camera_)
        return;
    if (*output && (*output)->pixels && ((*output)->width != width_ || (*output)->height != height_))
        return; // there is no room for the frame
    createShader();
    if (!problem_.empty())
        return;
    const bool firstFrame = !sceneCreated_;
    try {
        prepareFrame();
        if (firstFrame && hasParticles() && !pictureOnly_)
            drawThroughFrames(0, currentFrame_);
        else
            stepFrames();
    } catch (...) { // in the midst of a step, perhaps
        sceneCreated_ = false;
        random_.reset();
        throw;
    }
    if (!camera_) // the window was closed meanwhile
        return;
    output_->sharedBuffer = renderTexture_;
    copyOutput(output);
    getPixels(*output, buffer, channels);
    drewFrame_ = true;
}

void TovOgreEffectBase::stepFrames()
{
    const u32 now = currentFrame_;
    const u32 before = previousFrame_;
    const bool moves = !pictureOnly_ && hasParticles();
    if (moves && now < before) {
        sceneCreated_ = false; // until the new one is complete
        restartScene();
        createScene();
        sceneCreated_ = true;
        random_.reset();
        drawThroughFrames(0, now);
    } else if (moves && now - before >= 2) {
        drawThroughFrames(before + 1, now);
    } else {
        renderFrame();
    }
}

void TovOgreEffectBase::drawThroughFrames(u32 first, u32 last)
{
    if (first == 0)
        previousFrame_ = currentFrame_ = 0;
    for (u32 i = first; i <= last && camera_; ++i) {
        // The frames before the last only move what is in the scene.
        std::optional<OnePixel> unseen;
        if (i < last)
            unseen.emplace(viewport_, width_, height_);
        setFrameIndex(i);
        renderFrame();
    }
}

void TovOgreEffectBase::renderFrame()
{
    sceneManager().getRootSceneNode()->setVisible(false);
    effectNode_->setVisible(!pictureOnly_);
    planeNode_->setVisible(true);

    // Time is the scene manager's, which all effects share: it stands still for an effect that nothing moves
    // in.
    const u32 frames = hasParticles() && currentFrame_ > previousFrame_ ? currentFrame_ - previousFrame_ : 0;
    const float seconds = frameDuration_ * float(pictureOnly_ ? frames : std::min(frames, 1u));
    const RandomNumbersOf drawn(random_);
    bool goesOn = false;
    {
        const AutoUpdated updated(*renderTexture_->getBuffer()->getRenderTarget(), viewport_);
        goesOn = environment_->root()->renderOneFrame(seconds);
    }
    if (!goesOn)
        destroyCamera();
}

void TovOgreEffectBase::setReadBackMode(ReadBackMode mode)
{
    readBack_.setMode(mode);
    sizeChanged_ = true; // the buffer is made with the texture
}

void TovOgreEffectBase::getPixels(_ImageParam* record, u8* buffer, u32 channels)
{
    if (!record) {
        TovOgreBase::log("Error : Parameter is NULL!");
        return;
    }
    if (!renderTexture_) {
        TovOgreBase::log("Error: Render Texture is NULL!, Could not get pixels.");
        return;
    }
    // The record may be older than the texture's present size, or than this effect.
    if (!record->sharedBuffer || record->sharedBuffer != renderTexture_
        || record->width != renderTexture_->getWidth() || record->height != renderTexture_->getHeight())
        return;
    record->bytesPerPixel = channels;
    record->byteSize = record->width * record->height * 4;
    if (buffer && channels == 4)
        record->usePixels(buffer);
    else if (!record->pixels)
        record->allocatePixels();
    readPixels(*record);
}

void TovOgreEffectBase::readPixels(_ImageParam& record)
{
    record.format = u32(RecordFormat::A8R8G8B8);
    if (readBack_.read(*renderTexture_, record.pixels) && flip_)
        flipVertical(record.pixels, record.width, record.height);
}

} // namespace KEXSDK
