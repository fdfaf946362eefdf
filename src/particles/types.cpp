// Factories of this layer's emitters and affectors, and their registration with the checks of scripts.
#include "particles/RangedEmitter.h"
#include "particles/affectors.h"
#include "particles/checkedParameters.h"
#include "particles/scriptGuard.h"

#include <OgreMaterialManager.h> // (the particle manager's header does not include what it needs)
#include <OgreMovableObject.h>
#include <OgreParticleAffectorFactory.h>
#include <OgreParticleEmitterFactory.h>
#include <OgreParticleSystemManager.h>

namespace particles {

namespace {

// The factories live as long as the process, since OGRE's managers come and go with the environment.

class EmitterFactory final : public Ogre::ParticleEmitterFactory {
public:
    explicit EmitterFactory(RangedEmitter::Type type) : type_(type) { }

private:
    Ogre::String getName() const override { return RangedEmitter::kTypes[std::size_t(type_)]; }
    Ogre::ParticleEmitter* createEmitter(Ogre::ParticleSystem* system) override
    {
        return mEmitters.emplace_back(OGRE_NEW RangedEmitter(system, type_));
    }

    RangedEmitter::Type type_;
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
    using Type = RangedEmitter::Type;
    static EmitterFactory emitters[]{EmitterFactory(Type::ranged), EmitterFactory(Type::point),
        EmitterFactory(Type::box), EmitterFactory(Type::cylinder), EmitterFactory(Type::ellipsoid),
        EmitterFactory(Type::hollowEllipsoid), EmitterFactory(Type::ring)};
    static AffectorFactory<MaxVelocityAffector> maxVelocity;
    static AffectorFactory<MassForceAffector> massForce;
    static AffectorFactory<QuotaAffector> quota;
    auto& manager = Ogre::ParticleSystemManager::getSingleton();
    for (EmitterFactory& emitter : emitters)
        manager.addEmitterFactory(&emitter); // in the place of OGRE's own of that name
    manager.addAffectorFactory(&maxVelocity);
    manager.addAffectorFactory(&massForce);
    manager.addAffectorFactory(&quota);
    checkParameters(manager);
    guardScripts();
}

} // namespace particles
