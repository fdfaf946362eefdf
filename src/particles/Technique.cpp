// A technique's attributes, and its steps in time.
#include "particles/Technique.h"

#include "particles/RangedEmitter.h"
#include "particles/affectors.h"
#include "particles/limits.h"
#include "particles/words.h"

#include <OgreParticleSystem.h>
#include <OgreRenderQueue.h>
#include <OgreSceneManager.h>
#include <OgreSceneNode.h>

#include <array>
#include <string_view>

namespace particles {

namespace {

/// The most iterations of one step, whatever interval a template asks for.
constexpr float kMostIterations = 1000;

/// The distance beyond which particles are removed: far beyond anything that is seen.
constexpr float kFarthest = 1e9f;

std::size_t quotaOf(Words words, i32 largest) { return std::size_t(std::clamp(i32(words[0]), 0, largest)); }

struct Attribute {
    std::string_view name;
    void (*set)(Technique::Settings& settings, Words words); ///< never without a word
};

// The attributes that a technique has. OGRE has nothing for the others (level of detail, spatial hashing,
// depth, the other quotas).
constexpr std::array kAttributes{
    Attribute{"position",
        [](Technique::Settings& settings, Words words) {
            settings.position = vectorOf(words).value_or(settings.position);
        }},
    Attribute{"VPQuota",
        [](Technique::Settings& settings, Words words) { settings.quota = quotaOf(words, kLargestQuota); }},
    Attribute{"EEQuota",
        [](Technique::Settings& settings, Words words) {
            settings.emitterQuota = quotaOf(words, kLargestEmitterQuota);
        }},
    Attribute{"Width",
        [](Technique::Settings& settings, Words words) {
            settings.width = std::max(realOf(words[0]).value_or(settings.width), 0.0f);
        }},
    Attribute{"Height",
        [](Technique::Settings& settings, Words words) {
            settings.height = std::max(realOf(words[0]).value_or(settings.height), 0.0f);
        }},
    Attribute{"MaxVelocity",
        [](Technique::Settings& settings, Words words) {
            settings.maxVelocity = realOf(words[0]).value_or(settings.maxVelocity);
        }},
};

/// Whether the vector lies within kFarthest; false for NaN.
bool isNear(const Ogre::Vector3& vector)
{
    return std::abs(vector.x) <= kFarthest && std::abs(vector.y) <= kFarthest
        && std::abs(vector.z) <= kFarthest;
}

} // namespace

Technique::Technique(Ogre::SceneManager& manager, Ogre::SceneNode& parent, const std::string& name,
    const std::string& templateName)
    : Technique(manager) // from here on the destructor takes away what there is
{
    system_ = manager.createParticleSystem(name, templateName);
    node_ = parent.createChildSceneNode(name);
    iterationInterval_ = system_->getIterationInterval();
    // For templates without a quota this is OGRE's default.
    system_->setParticleQuota(std::min(system_->getParticleQuota(), std::size_t(kLargestQuota)));
    system_->setEmittedEmitterQuota(
        std::min(system_->getEmittedEmitterQuota(), std::size_t(kLargestEmitterQuota)));
    system_->setNonVisibleUpdateTimeout(0); // time passes whether or not frames are drawn
    // A fixed box that reaches everything that can be seen: OGRE would make one around the particles for
    // every step, and end the process over one with NaN in it.
    constexpr float kFarAway = 1e6f;
    system_->setBounds({-kFarAway, -kFarAway, -kFarAway, kFarAway, kFarAway, kFarAway});
    system_->setBoundsAutoUpdated(false);
    // A later group than the picture's: within one, OGRE draws opaque materials first.
    system_->setRenderQueueGroup(Ogre::RENDER_QUEUE_6);
    standStill();
    for (unsigned short i = 0; i < system_->getNumEmitters(); ++i) {
        auto& attributes = emitters_.emplace_back();
        if (auto* const emitter = dynamic_cast<RangedEmitter*>(system_->getEmitter(i)))
            attributes.emplace(*emitter);
    }
    template_.quota = system_->getParticleQuota();
    template_.emitterQuota = system_->getEmittedEmitterQuota();
    template_.width = system_->getDefaultWidth();
    template_.height = system_->getDefaultHeight();
    wanted_ = applied_ = template_;
}

Technique::~Technique()
{
    hide();
    if (system_)
        manager_.destroyParticleSystem(system_);
    if (node_)
        node_->getParentSceneNode()->removeAndDestroyChild(node_);
}

// Stops the system's time between steps. OGRE updates every system with each frame that anything draws, and
// even a step of no time runs the affectors, some of which change particles whatever the time; so the next
// iteration is put off for ever.
void Technique::standStill()
{
    constexpr float kNever = 1e30f;
    system_->setSpeedFactor(0);
    system_->setIterationInterval(kNever);
}

void Technique::advance(float seconds, Ogre::Camera& camera)
{
    /// Restores the standstill, also after an exception in a step: other effects' frames would continue it.
    struct StandingStill {
        Technique& technique;
        bool wasShown;
        ~StandingStill()
        {
            technique.standStill();
            if (!wasShown)
                technique.hide();
        }
    } const afterwards{*this, shown_};
    show(); // OGRE does not update a system outside the scene
    begun_ = true;
    system_->setSpeedFactor(1);
    system_->setIterationInterval(
        iterationInterval_ > 0 ? std::max(iterationInterval_, seconds / kMostIterations) : 0);
    system_->_update(seconds);
    system_->_update(0); // particles are born after the affectors ran: these give them their first colours
    standStill();
    loseWhatIsNowhere();
    // Sorts the particles, which affectors then meet in that order, whether or not this frame is drawn.
    system_->_notifyCurrentCamera(&camera);
}

/// Ends the life of particles that extreme forces and sizes have driven beyond what can be drawn.
void Technique::loseWhatIsNowhere()
{
    for (Ogre::Particle* const particle : system_->_getActiveParticles()) {
        const bool drawable =
            !particle->mOwnDimensions || (particle->mWidth <= kFarthest && particle->mHeight <= kFarthest);
        if (drawable && isNear(particle->mPosition) && isNear(particle->mDirection))
            continue;
        particle->mTimeToLive = 0;                            // it ends with the next step
        particle->mPosition = Ogre::Vector3(0, 0, kFarthest); // behind the camera
        particle->mDirection = Ogre::Vector3::ZERO;
        particle->setDimensions(0, 0);
    }
}

void Technique::show()
{
    if (shown_)
        return;
    shown_ = true; // first, so that hide() undoes also what an exception leaves half done
    try {
        node_->attachObject(system_);
    } catch (...) {
        hide();
        throw;
    }
}

void Technique::hide()
{
    if (shown_)
        node_->detachObject(system_);
    shown_ = false;
}

void Technique::beginAttributes()
{
    wanted_ = template_;
    for (auto& emitter : emitters_)
        if (emitter)
            emitter->begin();
}

void Technique::set(const AttributePath& path, Words words)
{
    if (words.empty())
        return;
    if (path.emitter != kNothing) {
        const std::size_t index = std::size_t(path.emitter);
        if (index < emitters_.size() && emitters_[index])
            emitters_[index]->set(path.attribute, words);
        return;
    }
    const auto attribute = std::ranges::find(kAttributes, path.attribute, &Attribute::name);
    if (attribute != kAttributes.end())
        attribute->set(wanted_, words);
}

void Technique::applyAttributes()
{
    for (auto& emitter : emitters_)
        if (emitter)
            emitter->apply();
    node_->setPosition(wanted_.position);
    if (wanted_.quota != applied_.quota)
        limitParticles(wanted_.quota);
    // Not once time has passed: OGRE would then hand out emitters twice that are in use.
    if (wanted_.emitterQuota != applied_.emitterQuota && !begun_)
        system_->setEmittedEmitterQuota(wanted_.emitterQuota);
    if (wanted_.width != applied_.width)
        system_->setDefaultWidth(wanted_.width);
    if (wanted_.height != applied_.height)
        system_->setDefaultHeight(wanted_.height);
    if (wanted_.maxVelocity != applied_.maxVelocity)
        limitVelocity(wanted_.maxVelocity);
    applied_ = wanted_;
}

void Technique::limitParticles(std::size_t quota)
{
    // OGRE's own quota is at least 1, and can only grow once there are particles.
    system_->setParticleQuota(std::max(quota, std::size_t(1)));
    if (!quotaLimit_ && quota < system_->getParticleQuota())
        quotaLimit_ = static_cast<QuotaAffector*>(system_->addAffector(QuotaAffector::kType));
    if (quotaLimit_)
        quotaLimit_->quota = quota;
}

void Technique::limitVelocity(float limit)
{
    if (!speedLimit_)
        speedLimit_ = static_cast<MaxVelocityAffector*>(system_->addAffector(MaxVelocityAffector::kType));
    speedLimit_->limit = limit;
}

} // namespace particles
