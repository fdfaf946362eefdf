// Affector types for what OGRE's particles lack: a greatest speed, and forces that move light particles more
// than heavy ones.
#pragma once

#include <OgreParticleAffector.h>
#include <OgreVector.h>

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

/// Tells the affectors of a system what the particle weighs that its emitter is starting.
void announceMass(Ogre::ParticleSystem& system, float mass);

} // namespace particles
