// The affectors' work, and their script parameters.
#include "particles/affectors.h"

#include <OgreColourValue.h>
#include <OgreParticle.h>
#include <OgreParticleSystem.h>
#include <OgreStringConverter.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace particles {

const char* const MaxVelocityAffector::kType = "MaxVelocity";
const char* const MassForceAffector::kType = "MassForce";
const char* const QuotaAffector::kType = "EffectEngine/Quota";

namespace {

using Ogre::String;
using Ogre::StringConverter;

constexpr float kLeastMass = 0.001f;

class LimitCommand final : public Ogre::ParamCommand {
    String doGet(const void* target) const override
    {
        return StringConverter::toString(static_cast<const MaxVelocityAffector*>(target)->limit);
    }
    void doSet(void* target, const String& text) override
    {
        static_cast<MaxVelocityAffector*>(target)->limit = StringConverter::parseReal(text, -1);
    }
};

class ForceCommand final : public Ogre::ParamCommand {
    String doGet(const void* target) const override
    {
        return StringConverter::toString(static_cast<const MassForceAffector*>(target)->force);
    }
    void doSet(void* target, const String& text) override
    {
        static_cast<MassForceAffector*>(target)->force = StringConverter::parseVector3(text);
    }
};

/// Access to a system's particles, of which the quota withholds some, because OGRE's own quota cannot fall.
struct Pool : Ogre::ParticleSystem {
    static std::list<Ogre::Particle*>& free(Ogre::ParticleSystem& system)
    {
        return system.*(&Pool::mFreeParticles);
    }
    static std::size_t size(Ogre::ParticleSystem& system) { return (system.*(&Pool::mParticlePool)).size(); }
};

template <class Fn> void forEach(Ogre::ParticleSystem& system, Fn fn)
{
    for (Ogre::Particle* const particle :
        system._getActiveParticles()) // getParticle(i) walks there from the start
        fn(*particle);
}

} // namespace

MaxVelocityAffector::MaxVelocityAffector(Ogre::ParticleSystem* system) : ParticleAffector(system)
{
    mType = kType;
    static LimitCommand command;
    if (createParamDictionary("MaxVelocityAffector"))
        getParamDictionary()->addParameter(Ogre::ParameterDef("limit", "", Ogre::PT_REAL), &command);
}

void MaxVelocityAffector::_initParticle(Ogre::Particle* particle)
{
    if (limit >= 0 && particle->mDirection.squaredLength() > limit * limit)
        particle->mDirection *= limit / particle->mDirection.length();
}

void MaxVelocityAffector::_affectParticles(Ogre::ParticleSystem* system, Ogre::Real)
{
    if (limit >= 0)
        forEach(*system, [&](Ogre::Particle& particle) { _initParticle(&particle); });
}

MassForceAffector::MassForceAffector(Ogre::ParticleSystem* system) : ParticleAffector(system)
{
    mType = kType;
    static ForceCommand command;
    if (createParamDictionary("MassForceAffector"))
        getParamDictionary()->addParameter(
            Ogre::ParameterDef("force_vector", "", Ogre::PT_VECTOR3), &command);
}

void MassForceAffector::_initParticle(Ogre::Particle* particle)
{
    masses_[particle] = std::max(std::exchange(nextMass, 1.0f), kLeastMass);
}

void MassForceAffector::_affectParticles(Ogre::ParticleSystem* system, Ogre::Real seconds)
{
    forEach(*system,
        [&](Ogre::Particle& particle) { particle.mDirection += force * (seconds / masses_[&particle]); });
}

// Takes free particles away, or gives them back, so that no more start than the quota allows. OGRE calls it
// after particles ended and before emitters ask for free ones.
void QuotaAffector::_affectParticles(Ogre::ParticleSystem* system, Ogre::Real)
{
    auto& free = Pool::free(*system);
    const std::size_t alive = Pool::size(*system) - free.size() - withheld_.size();
    const std::size_t allowed = quota > alive ? quota - alive : 0;
    while (free.size() > allowed)
        withheld_.splice(withheld_.begin(), free, std::prev(free.end()));
    while (free.size() < allowed && !withheld_.empty())
        free.splice(free.end(), withheld_, withheld_.begin());
}

void announceMass(Ogre::ParticleSystem& system, float mass)
{
    for (unsigned short i = 0; i < system.getNumAffectors(); ++i) {
        Ogre::ParticleAffector* const affector = system.getAffector(i);
        if (affector->getType() == MassForceAffector::kType)
            static_cast<MassForceAffector*>(affector)->nextMass = mass;
    }
}

} // namespace particles
