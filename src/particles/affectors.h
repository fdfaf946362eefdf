// Affector types for what OGRE's particles lack: a greatest speed, forces that move light particles more than
// heavy ones, and a quota that falls.
#pragma once

#include <OgreParticleAffector.h>
#include <OgreVector.h>

#include <limits>
#include <list>
#include <unordered_map>

namespace particles {

/// "MaxVelocity": no particle of the system is faster than `limit` units per second; negative means no limit.
class MaxVelocityAffector final : public Ogre::ParticleAffector {
public:
    static const char* const kType;

    explicit MaxVelocityAffector(Ogre::ParticleSystem* system);
    void _initParticle(Ogre::Particle* particle) override;
    void _affectParticles(Ogre::ParticleSystem* system, Ogre::Real seconds) override;

    float limit = -1;
};

/// "MassForce": accelerates every particle by force / mass. Particles weigh 1 unless their emitter says more.
class MassForceAffector final : public Ogre::ParticleAffector {
public:
    static const char* const kType;

    explicit MassForceAffector(Ogre::ParticleSystem* system);
    void _initParticle(Ogre::Particle* particle) override;
    void _affectParticles(Ogre::ParticleSystem* system, Ogre::Real seconds) override;

    Ogre::Vector3 force{0, 0, 0};
    float nextMass = 1; ///< of the particle that is being started

private:
    std::unordered_map<const Ogre::Particle*, float> masses_; ///< by place in the system's pool
};

/// "Quota": no particle starts while the system has `quota` of them. Those beyond a quota that fell live out.
class QuotaAffector final : public Ogre::ParticleAffector {
public:
    static const char* const kType;

    explicit QuotaAffector(Ogre::ParticleSystem* system) : ParticleAffector(system) { mType = kType; }
    void _affectParticles(Ogre::ParticleSystem* system, Ogre::Real seconds) override;

    std::size_t quota = std::numeric_limits<std::size_t>::max();

private:
    std::list<Ogre::Particle*> withheld_; ///< free ones that emitters do not get
};

/// Tells the affectors of a system what the particle weighs that its emitter is starting.
void announceMass(Ogre::ParticleSystem& system, float mass);

} // namespace particles
