// Particles within the life of an effect.
#include "EffectTovOgre/TovOgrePaticalUniverseEffect.h"

#include "core/DynClass.h"
#include "core/Log.h"

#include <array>
#include <span>
#include <stdexcept>

using KEXSDK::ParamType;
using KEXSDK::ParamVariant;

namespace {

DYN_CLASS::CFactory<TovOgrePaticalUniverseEffect> factory;

// The plane z = 0 of a scene is as near as this, and shows 41.4 units of height.
const Ogre::Vector3 kCameraPosition(0, 0, 50);
const Ogre::Vector3 kCameraTarget(0, 0, -300);

std::string nextInstanceName()
{
    static std::atomic<u32> count = 0;
    return "PS_" + std::to_string(++count);
}

/// While it lives, OGRE's random numbers are those of a sequence.
class RandomNumbers {
public:
    explicit RandomNumbers(MyRandomValueProvider& sequence) { Ogre::Math::SetRandomValueProvider(&sequence); }
    RandomNumbers(const RandomNumbers&) = delete;
    RandomNumbers& operator=(const RandomNumbers&) = delete;
    ~RandomNumbers() { Ogre::Math::SetRandomValueProvider(nullptr); }
};

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
    // They change with every frame and are no attributes.
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
    const RandomNumbers drawn(sequence_);
    try {
        scene_.emplace(sceneManager(), effectSceneNode(), instanceName_, particleTemplate);
    } catch (const std::invalid_argument& error) {
        templateMissing_ = true;
        logging::error("TovOgrePaticalUniverseEffect::createScene", error.what());
        return;
    }
    moveCamera(kCameraPosition, kCameraTarget);
    setAttributes();
}

void TovOgrePaticalUniverseEffect::restartScene() { scene_.reset(); }

void TovOgrePaticalUniverseEffect::applyShaderParameters()
{
    if (scene_ && paramsChanged) {
        const RandomNumbers drawn(sequence_);
        setAttributes();
    }
    TovOgreEffectBase::applyShaderParameters();
}

void TovOgrePaticalUniverseEffect::setAttributes()
{
    forEachParam([&](const std::string& name, const ParamVariant& value) {
        if (particles::isAttributeName(name))
            scene_->set(particles::parseAttributePath(name), wordsOf(value));
    });
    paramsChanged = 0;
}

void TovOgrePaticalUniverseEffect::render(KEXSDK::_ImageParam** output, u8* buffer, u32 channels)
{
    wantedFrame_ = currentFrame_;
    TovOgreEffectBase::render(output, buffer, channels);
}

void TovOgrePaticalUniverseEffect::renderFrame()
{
    if (!scene_)
        return TovOgreEffectBase::renderFrame();
    if (currentFrame_ != previousFrame_ && camera()) {
        const RandomNumbers drawn(sequence_);
        scene_->advance(frameDuration_, *camera());
    }
    if (currentFrame_ != wantedFrame_)
        return;
    scene_->show();
    TovOgreEffectBase::renderFrame();
    scene_->hide();
}
