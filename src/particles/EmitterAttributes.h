// The attributes of an emitter, set by name.
#pragma once

#include "core/Types.h"

#include <OgreColourValue.h>
#include <OgreVector.h>

#include <array>
#include <span>
#include <string_view>

namespace particles {

class RangedEmitter;

/// Numbers of an emitter are fixed or random, as its template made them, and stay so: one value sets a fixed
/// number, two set the ends of a random one, anything else changes nothing.
///
/// Settings come in rounds: begin(), set() for everything that is set, apply(). The emitter gets only what
/// differs from the round before, so a round that changes one attribute leaves what the others have begun
/// alone.
class EmitterAttributes {
public:
    explicit EmitterAttributes(RangedEmitter& emitter);

    void begin() { wanted_ = template_; }
    void set(std::string_view attribute, std::span<const u32> words);
    void apply();

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

    struct Range {
        bool set = false;
        float low = 0;
        float high = 0;
        friend bool operator==(const Range&, const Range&) = default;
    };
    struct Settings {
        Ogre::Vector3 position;
        Ogre::Vector3 direction;
        Ogre::ColourValue colourStart;
        Ogre::ColourValue colourEnd;
        std::array<Range, kNumbers> numbers;
    };

    void applyNumber(Number number, Range range);

    RangedEmitter* emitter_;
    std::array<bool, kNumbers> isRandom_{};
    Settings template_; ///< without any attribute
    Settings wanted_;
    Settings applied_;
};

} // namespace particles
