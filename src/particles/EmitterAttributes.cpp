// From attribute names to the settings of OGRE's emitters, and of ours.
#include "particles/EmitterAttributes.h"

#include "particles/RangedEmitter.h"
#include "particles/words.h"

#include <algorithm>

namespace particles {

const std::array<std::string_view, EmitterAttributes::kNumbers> EmitterAttributes::kNames{"Velocity",
    "Duration", "RepeatDelay", "TimeToLive", "EmissionRate", "Angle", "Mass", "AllDimensions",
    "ParticleWidth", "ParticleHeight"};

EmitterAttributes::EmitterAttributes(Ogre::ParticleEmitter& emitter)
    : emitter_(&emitter),
      ranged_(emitter.getType() == RangedEmitter::kType ? static_cast<RangedEmitter*>(&emitter) : nullptr)
{
    isRandom_[velocity] = emitter.getMinParticleVelocity() != emitter.getMaxParticleVelocity();
    isRandom_[duration] = emitter.getMinDuration() != emitter.getMaxDuration();
    isRandom_[repeatDelay] = emitter.getMinRepeatDelay() != emitter.getMaxRepeatDelay();
    isRandom_[timeToLive] = emitter.getMinTimeToLive() != emitter.getMaxTimeToLive();
    if (!ranged_)
        return;
    isRandom_[emissionRate] = ranged_->rate.random;
    isRandom_[angle] = ranged_->angle.random;
    isRandom_[mass] = ranged_->mass.random;
    isRandom_[allDimensions] = ranged_->allDimensions.random;
    isRandom_[particleWidth] = ranged_->particleWidth.random;
    isRandom_[particleHeight] = ranged_->particleHeight.random;
}

void EmitterAttributes::set(std::string_view attribute, Words words)
{
    if (attribute == "position") {
        if (const auto position = vectorOf(words))
            emitter_->setPosition(*position);
    } else if (attribute == "direction") {
        if (const auto direction = vectorOf(words); direction && !direction->isZeroLength())
            emitter_->setDirection(*direction);
    } else if (attribute == "Colour") {
        if (const auto colour = colourOf(words))
            emitter_->setColour(*colour);
    } else if (attribute == "ColourRangeStart") {
        if (const auto colour = colourOf(words))
            emitter_->setColourRangeStart(*colour);
    } else if (attribute == "ColourRangeEnd") {
        if (const auto colour = colourOf(words))
            emitter_->setColourRangeEnd(*colour);
    } else if (const auto name = std::ranges::find(kNames, attribute); name != kNames.end()) {
        const Number number = Number(name - kNames.begin());
        if (words.size() != (isRandom_[number] ? 2u : 1u))
            return;
        const auto low = realOf(words.front());
        const auto high = realOf(words.back());
        if (low && high)
            setNumber(number, *low, *high);
    }
}

void EmitterAttributes::setNumber(Number number, float low, float high)
{
    const auto setRanged = [&](DynamicValue RangedEmitter::*value) {
        if (ranged_)
            ranged_->*value = {true, isRandom_[number], low, high};
    };
    const float positiveLow = std::max(low, 0.0f);
    const float positiveHigh = std::max(high, 0.0f);
    switch (number) {
    case velocity:
        return emitter_->setParticleVelocity(low, high);
    case duration:
        return emitter_->setDuration(positiveLow, positiveHigh);
    case repeatDelay:
        return emitter_->setRepeatDelay(positiveLow, positiveHigh);
    case timeToLive:
        return emitter_->setTimeToLive(positiveLow, positiveHigh);
    case emissionRate:
        if (ranged_)
            return setRanged(&RangedEmitter::rate);
        return emitter_->setEmissionRate(std::min(positiveLow, kLargestRate));
    case angle:
        if (isRandom_[angle])
            return setRanged(&RangedEmitter::angle);
        return emitter_->setAngle(Ogre::Degree(low));
    case mass:
        return setRanged(&RangedEmitter::mass);
    case allDimensions:
        return setRanged(&RangedEmitter::allDimensions);
    case particleWidth:
        return setRanged(&RangedEmitter::particleWidth);
    case particleHeight:
        return setRanged(&RangedEmitter::particleHeight);
    case kNumbers:
        break;
    }
}

} // namespace particles
