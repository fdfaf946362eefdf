// An emitter's attributes by name.
#pragma once

#include "core/Types.h"

#include <array>
#include <span>
#include <string_view>

namespace Ogre {
class ParticleEmitter;
}

namespace particles {

class RangedEmitter;

/// Numbers of an emitter are fixed or random, as its template made them, and stay so: one value sets a fixed
/// number, two set the ends of a random one, anything else changes nothing.
class EmitterAttributes {
public:
    explicit EmitterAttributes(Ogre::ParticleEmitter& emitter);

    void set(std::string_view attribute, std::span<const u32> words);

private:
    enum Number {
        velocity,
        duration,
        repeatDelay,
        timeToLive,
        emissionRate,
        angle,
        mass,
        allDimensions,
        particleWidth,
        particleHeight,
        kNumbers
    };
    static const std::array<std::string_view, kNumbers> kNames;

    void setNumber(Number number, float low, float high);

    Ogre::ParticleEmitter* emitter_;
    RangedEmitter* ranged_; ///< null for an emitter of OGRE's own
    std::array<bool, kNumbers> isRandom_{};
};

} // namespace particles
