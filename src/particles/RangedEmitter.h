// All emitter types: those of OGRE's own, and "Ranged", each with ranges and with sizes of the particles.
#pragma once

#include "core/Types.h"

#include <OgreParticleEmitter.h>

#include <array>

namespace particles {

/// Particles per second; more than any system holds.
constexpr float kLargestRate = 60'000;

/// A number that is fixed, or drawn anew from a range each time.
struct DynamicValue {
    bool given = false;
    bool random = false;
    float low = 0;
    float high = 0;

    float draw() const;
};

/// Emission rate (drawn for every step), cone angle, mass and size of the particles may be ranges. The types
/// of OGRE's own start their particles where OGRE does, with the same random numbers; "Ranged" has a shape.
class RangedEmitter final : public Ogre::ParticleEmitter {
public:
    enum class Type : u32 { ranged, point, box, cylinder, ellipsoid, hollowEllipsoid, ring };
    static constexpr std::array<const char*, 7> kTypes{
        "Ranged", "Point", "Box", "Cylinder", "Ellipsoid", "HollowEllipsoid", "Ring"};

    /// The space that "Ranged" particles start in.
    enum class Shape : u32 { point, box, ellipsoid, ring, cylinder };

    RangedEmitter(Ogre::ParticleSystem* system, Type type);

    unsigned short _getEmissionCount(Ogre::Real seconds) override;
    void _initParticle(Ogre::Particle* particle) override;

    /// Sets another duration or delay. Before the first step the clock starts with it. Later, the time that
    /// has passed of a running one counts, and a number is drawn from a range when the next one begins.
    void changeDuration(float low, float high);
    void changeRepeatDelay(float low, float high);

    Shape shape = Shape::point;
    Ogre::Vector3 size{0, 0, 0}; ///< along left, up and the direction of the emitter
    Ogre::Vector3 inner{
        0.5, 0.5, 0.5}; ///< share of the size that stays empty, of rings and hollow ellipsoids
    DynamicValue rate;  ///< particles per second
    DynamicValue angle; ///< degrees away from the direction
    DynamicValue mass;
    DynamicValue allDimensions;
    DynamicValue particleWidth;
    DynamicValue particleHeight;

private:
    void genEmissionDirection(const Ogre::Vector3& position, Ogre::Vector3& direction) override;
    Ogre::Vector3 startWithinShape() const;
    Ogre::Vector3 startAsOgreDoes() const;
    void setDimensions(Ogre::Particle& particle) const;
    void changeClock(
        bool runs, Ogre::Real& low, Ogre::Real& high, Ogre::Real& remaining, float newLow, float newHigh);
    void defineParameters();

    Type type_;
    bool begun_ = false; ///< time has passed
};

/// Makes the emitter and affector types of this layer known to OGRE, and lets scripts set no parameter to
/// what OGRE cannot bear. Once for every start of OGRE, before scripts are read.
void registerTypes();

} // namespace particles
