// Attributes of techniques, and their time.
#include "particles/Technique.h"

#include "particles/affectors.h"
#include "particles/words.h"

#include <OgreParticleSystem.h>
#include <OgreRenderQueue.h>
#include <OgreSceneManager.h>
#include <OgreSceneNode.h>

#include <array>
#include <string_view>

namespace particles {

namespace {

/// OGRE draws the particles of a system with 16-bit indices of four corners each.
constexpr i32 kLargestQuota = 16383;
constexpr i32 kLargestEmitterQuota = 100;

std::size_t quotaOf(Words words, i32 largest) { return std::size_t(std::clamp(i32(words[0]), 0, largest)); }

struct Attribute {
    std::string_view name;
    void (*set)(Technique& technique, Words words); ///< never without a word
};

// What the layer below has nothing for (level of detail, spatial hashing, depth, the other quotas) is left
// out.
constexpr std::array kAttributes{
    Attribute{"position",
        [](Technique& technique, Words words) {
            if (const auto position = vectorOf(words))
                technique.node().setPosition(*position);
        }},
    Attribute{"VPQuota",
        [](Technique& technique, Words words) {
            const std::size_t quota = quotaOf(words, kLargestQuota);
            technique.system().setEmitting(quota > 0); // OGRE takes no quota of nothing
            technique.system().setParticleQuota(quota);
        }},
    Attribute{"EEQuota",
        [](Technique& technique, Words words) {
            technique.system().setEmittedEmitterQuota(quotaOf(words, kLargestEmitterQuota));
        }},
    Attribute{"Width",
        [](Technique& technique, Words words) {
            if (const auto width = realOf(words[0]))
                technique.system().setDefaultWidth(std::max(*width, 0.0f));
        }},
    Attribute{"Height",
        [](Technique& technique, Words words) {
            if (const auto height = realOf(words[0]))
                technique.system().setDefaultHeight(std::max(*height, 0.0f));
        }},
    Attribute{"MaxVelocity",
        [](Technique& technique, Words words) {
            if (const auto limit = realOf(words[0]))
                technique.speedLimit().limit = *limit;
        }},
};

} // namespace

Technique::Technique(Ogre::SceneManager& manager, Ogre::SceneNode& parent, const std::string& name,
    const std::string& templateName)
    : manager_(manager),
      system_(manager.createParticleSystem(name, templateName)),
      node_(parent.createChildSceneNode(name)),
      iterationInterval_(system_->getIterationInterval())
{
    system_->setParticleQuota(std::min(system_->getParticleQuota(), std::size_t(kLargestQuota)));
    // After the picture, also with a material that covers what it is drawn over: OGRE draws those first of a
    // group.
    system_->setRenderQueueGroup(Ogre::RENDER_QUEUE_6);
    standStill();
    for (unsigned short i = 0; i < system_->getNumEmitters(); ++i)
        emitters_.emplace_back(*system_->getEmitter(i));
}

Technique::~Technique()
{
    hide();
    manager_.destroyParticleSystem(system_);
    node_->getParentSceneNode()->removeAndDestroyChild(node_);
}

// OGRE updates every system with each frame that anything draws. Without any time to pass that would still
// run the affectors, and some change particles whatever the time; so it is always too early for the next
// iteration.
void Technique::standStill()
{
    constexpr float kNever = 1e30f;
    system_->setSpeedFactor(0);
    system_->setIterationInterval(kNever);
}

void Technique::advance(float seconds, Ogre::Camera& camera)
{
    const bool wasShown = shown_;
    show(); // a system that stands nowhere does not move
    system_->setSpeedFactor(1);
    system_->setIterationInterval(iterationInterval_);
    system_->_update(seconds);
    system_->_update(0); // particles are born after the affectors ran: these give them their first colours
    standStill();
    // Sorts the particles, which affectors then meet in that order, whether or not this frame is drawn.
    system_->_notifyCurrentCamera(&camera);
    if (!wasShown)
        hide();
}

void Technique::show()
{
    if (!shown_)
        node_->attachObject(system_);
    shown_ = true;
}

void Technique::hide()
{
    if (shown_)
        node_->detachObject(system_);
    shown_ = false;
}

MaxVelocityAffector& Technique::speedLimit()
{
    if (!speedLimit_)
        speedLimit_ = static_cast<MaxVelocityAffector*>(system_->addAffector(MaxVelocityAffector::kType));
    return *speedLimit_;
}

void Technique::set(const AttributePath& path, Words words)
{
    if (words.empty())
        return;
    if (path.emitter != kNothing) {
        if (std::size_t(path.emitter) < emitters_.size())
            emitters_[std::size_t(path.emitter)].set(path.attribute, words);
        return;
    }
    const auto attribute = std::ranges::find(kAttributes, path.attribute, &Attribute::name);
    if (attribute != kAttributes.end())
        attribute->set(*this, words);
}

} // namespace particles
