// The emitter type "Ranged": what OGRE's own emitters do, with ranges where those have one number.
#pragma once

#include "core/Types.h"

#include <OgreParticleEmitter.h>

namespace particles {

/// As many as fit into the number that OGRE counts them with, for the longest step of a scene.
constexpr float kLargestRate = 60'000;

/// A number that is the same every time, or drawn anew from a range.
struct DynamicValue {
    bool given = false;
    bool random = false;
    float low = 0;
    float high = 0;

    float draw() const;
};

/// Emission rate (drawn for every step), cone angle, mass and size of the particles may be ranges; the space
/// that particles start in has one of several shapes.
class RangedEmitter final : public Ogre::ParticleEmitter {
public:
    static const char* const kType;

    enum class Shape : u32 { point, box, ellipsoid, ring, cylinder };

    explicit RangedEmitter(Ogre::ParticleSystem* system);

    unsigned short _getEmissionCount(Ogre::Real seconds) override;
    void _initParticle(Ogre::Particle* particle) override;

    Shape shape = Shape::point;
    Ogre::Vector3 size{0, 0, 0}; ///< along left, up and the direction of the emitter
    DynamicValue rate;           ///< particles per second
    DynamicValue angle;          ///< degrees away from the direction
    DynamicValue mass;
    DynamicValue allDimensions;
    DynamicValue particleWidth;
    DynamicValue particleHeight;

private:
    void genEmissionDirection(const Ogre::Vector3& position, Ogre::Vector3& direction) override;
    Ogre::Vector3 startWithinShape() const;
    void setDimensions(Ogre::Particle& particle) const;
    void defineParameters();
};

/// Makes the emitter and affector types of this layer known to OGRE, for scripts too. Once for every start of
/// OGRE, before scripts are read.
void registerTypes();

} // namespace particles
