// Makes, moves and draws the particles of an effect.
#include "EffectTovOgre/TovOgrePaticalUniverseEffect.h"

#include "core/DynClass.h"
#include "core/Log.h"

#include <exception>
#include <new>
#include <span>
#include <utility>

namespace KEXSDK {

namespace {

DYN_CLASS::CFactory<TovOgrePaticalUniverseEffect> factory;

// The camera is 50 units in front of the plane z = 0, and sees 41.4 units of its height.
const Ogre::Vector3 kCameraPosition(0, 0, 50);
const Ogre::Vector3 kCameraTarget(0, 0, -300);

constexpr const char* kSceneTag = "TovOgrePaticalUniverseEffect::createScene";

/// Frames that one request simulates at most. (Every other request waits meanwhile.)
constexpr u32 kMostSteps = 10'000;

std::string nextInstanceName()
{
    static std::atomic<u32> count = 0;
    return "PS_" + std::to_string(++count);
}

/// The 32-bit words of a number or an array; none of anything else.
std::span<const u32> wordsOf(const ParamVariant& value)
{
    switch (ParamType(value.type)) {
    case ParamType::integer:
    case ParamType::real:
        return {reinterpret_cast<const u32*>(&value.value), 1};
    case ParamType::integerArray:
    case ParamType::realArray:
        return {reinterpret_cast<const u32*>(value.value.integers), value.count};
    case ParamType::filePath:
        break;
    }
    return {};
}

} // namespace

TovOgrePaticalUniverseEffect::TovOgrePaticalUniverseEffect() : instanceName_(nextInstanceName())
{
    // These change with every frame and are no attributes of particles.
    for (const char* const name : {"u_global_time", "u_total_time", "u_frame_rate"})
        declareVolatile(name);
}

TovOgrePaticalUniverseEffect::~TovOgrePaticalUniverseEffect() { scene_.reset(); }

void TovOgrePaticalUniverseEffect::destroyScene()
{
    restartScene();
    TovOgreEffectBase::destroyScene();
}

void TovOgrePaticalUniverseEffect::createScene()
{
    if (!hasParticles())
        return;
    sequence_.reset();
    const RandomNumbersOf drawn(sequence_);
    try {
        scene_.emplace(sceneManager(), effectSceneNode(), instanceName_, particleTemplate);
    } catch (const std::bad_alloc&) { // no fault of the template's
        throw;
    } catch (const std::exception& error) { // OGRE's own among them
        return leaveOut(error.what());
    }
    moveCamera(kCameraPosition, kCameraTarget);
    setAttributes();
}

void TovOgrePaticalUniverseEffect::restartScene() { scene_.reset(); }

void TovOgrePaticalUniverseEffect::applyShaderParameters()
{
    if (scene_ && paramsChanged) {
        const RandomNumbersOf drawn(sequence_);
        setAttributes();
    }
    TovOgreEffectBase::applyShaderParameters();
}

void TovOgrePaticalUniverseEffect::setAttributes()
{
    scene_->beginAttributes();
    forEachParam([&](const std::string& name, const ParamVariant& value) {
        if (particles::isAttributeName(name))
            scene_->setAttribute(particles::parseAttributePath(name), wordsOf(value));
    });
    scene_->applyAttributes();
    paramsChanged = 0;
}

void TovOgrePaticalUniverseEffect::leaveOut(const char* reason)
{
    scene_.reset();
    leftOut_ = true;
    logging::error(kSceneTag, "The particles of [" + particleTemplate + "] are left out: " + reason);
}

void TovOgrePaticalUniverseEffect::render(_ImageParam** output, u8* buffer, u32 channels)
{
    stopInReach();
    wantedFrame_ = currentFrame_;
    TovOgreEffectBase::render(output, buffer, channels);
}

void TovOgrePaticalUniverseEffect::stopInReach()
{
    if (!hasParticles())
        return;
    const u32 begin = scene_ && currentFrame_ >= previousFrame_ ? previousFrame_ : 0;
    if (currentFrame_ - begin <= kMostSteps)
        return;
    const u32 end = begin + kMostSteps;
    if (!std::exchange(stopReported_, true))
        logging::warning(kSceneTag,
            "The particles of [" + particleTemplate + "] are shown at frame " + std::to_string(end)
                + " in the place of " + std::to_string(currentFrame_) + ": no more than "
                + std::to_string(kMostSteps)
                + " frames are simulated at once. The next frame goes on there.");
    currentFrame_ = end;
}

void TovOgrePaticalUniverseEffect::renderFrame()
{
    if (!scene_) {
        if (currentFrame_ == wantedFrame_)
            TovOgreEffectBase::renderFrame();
        return;
    }
    if (currentFrame_ != previousFrame_ && camera()) {
        const RandomNumbersOf drawn(sequence_);
        try {
            scene_->advance(frameDuration_, *camera());
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) { // a picture that an affector reads may be missing
            leaveOut(error.what());
        }
    }
    if (currentFrame_ != wantedFrame_)
        return;
    if (!scene_)
        return TovOgreEffectBase::renderFrame();
    scene_->show();
    TovOgreEffectBase::renderFrame();
    scene_->hide();
}

} // namespace KEXSDK
