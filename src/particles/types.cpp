// The factories of this layer's emitters and affectors.
#include "particles/RangedEmitter.h"
#include "particles/affectors.h"

#include <OgreMaterialManager.h> // (the particle manager's header does not include what it needs)
#include <OgreMovableObject.h>
#include <OgreParticleAffectorFactory.h>
#include <OgreParticleEmitterFactory.h>
#include <OgreParticleSystemManager.h>

namespace particles {

namespace {

// OGRE's managers come and go with the environment; factories stay for the process.

class RangedEmitterFactory final : public Ogre::ParticleEmitterFactory {
    Ogre::String getName() const override { return RangedEmitter::kType; }
    Ogre::ParticleEmitter* createEmitter(Ogre::ParticleSystem* system) override
    {
        return mEmitters.emplace_back(OGRE_NEW RangedEmitter(system));
    }
};

template <class Affector> class AffectorFactory final : public Ogre::ParticleAffectorFactory {
    Ogre::String getName() const override { return Affector::kType; }
    Ogre::ParticleAffector* createAffector(Ogre::ParticleSystem* system) override
    {
        return mAffectors.emplace_back(OGRE_NEW Affector(system));
    }
};

} // namespace

void registerTypes()
{
    static RangedEmitterFactory ranged;
    static AffectorFactory<MaxVelocityAffector> maxVelocity;
    static AffectorFactory<MassForceAffector> massForce;
    auto& manager = Ogre::ParticleSystemManager::getSingleton();
    manager.addEmitterFactory(&ranged);
    manager.addAffectorFactory(&maxVelocity);
    manager.addAffectorFactory(&massForce);
}

} // namespace particles
