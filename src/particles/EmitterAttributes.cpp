// The table of attribute names, and the settings of emitters that they change.
#include "particles/EmitterAttributes.h"

#include "particles/RangedEmitter.h"
#include "particles/words.h"

#include <algorithm>

namespace particles {

const std::array<std::string_view, EmitterAttributes::kNumbers> EmitterAttributes::kNames{"Velocity",
    "Duration", "RepeatDelay", "TimeToLive", "EmissionRate", "Angle", "Mass", "AllDimensions",
    "ParticleWidth", "ParticleHeight"};

EmitterAttributes::EmitterAttributes(RangedEmitter& emitter)
    : emitter_(&emitter),
      template_{emitter.getPosition(), emitter.getDirection(), emitter.getColourRangeStart(),
          emitter.getColourRangeEnd(), {}},
      wanted_(template_),
      applied_(template_)
{
    isRandom_[velocity] = emitter.getMinParticleVelocity() != emitter.getMaxParticleVelocity();
    isRandom_[duration] = emitter.getMinDuration() != emitter.getMaxDuration();
    isRandom_[repeatDelay] = emitter.getMinRepeatDelay() != emitter.getMaxRepeatDelay();
    isRandom_[timeToLive] = emitter.getMinTimeToLive() != emitter.getMaxTimeToLive();
    isRandom_[emissionRate] = emitter.rate.random;
    isRandom_[angle] = emitter.angle.random;
    isRandom_[mass] = emitter.mass.random;
    isRandom_[allDimensions] = emitter.allDimensions.random;
    isRandom_[particleWidth] = emitter.particleWidth.random;
    isRandom_[particleHeight] = emitter.particleHeight.random;
}

void EmitterAttributes::set(std::string_view attribute, Words words)
{
    if (attribute == "position") {
        wanted_.position = vectorOf(words).value_or(wanted_.position);
    } else if (attribute == "direction") {
        if (const auto direction = vectorOf(words); direction && !direction->isZeroLength())
            wanted_.direction = *direction;
    } else if (attribute == "Colour") {
        if (const auto colour = colourOf(words))
            wanted_.colourStart = wanted_.colourEnd = *colour;
    } else if (attribute == "ColourRangeStart") {
        wanted_.colourStart = colourOf(words).value_or(wanted_.colourStart);
    } else if (attribute == "ColourRangeEnd") {
        wanted_.colourEnd = colourOf(words).value_or(wanted_.colourEnd);
    } else if (const auto name = std::ranges::find(kNames, attribute); name != kNames.end()) {
        const std::size_t number = std::size_t(name - kNames.begin());
        if (words.size() != (isRandom_[number] ? 2u : 1u))
            return;
        const auto low = realOf(words.front());
        const auto high = realOf(words.back());
        if (low && high)
            wanted_.numbers[number] = {true, *low, *high};
    }
}

void EmitterAttributes::apply()
{
    if (wanted_.position != applied_.position)
        emitter_->setPosition(wanted_.position);
    if (wanted_.direction != applied_.direction)
        emitter_->setDirection(wanted_.direction);
    emitter_->setColour(wanted_.colourStart, wanted_.colourEnd);
    for (std::size_t i = 0; i < kNumbers; ++i)
        if (wanted_.numbers[i].set && wanted_.numbers[i] != applied_.numbers[i])
            applyNumber(Number(i), wanted_.numbers[i]);
    applied_ = wanted_;
}

void EmitterAttributes::applyNumber(Number number, Range range)
{
    const float low = range.low;
    const float high = range.high;
    const float positiveLow = std::max(low, 0.0f);
    const float positiveHigh = std::max(high, 0.0f);
    const DynamicValue value{true, isRandom_[number], low, high};
    switch (number) {
    case velocity:
        return emitter_->setParticleVelocity(low, high);
    case duration:
        return emitter_->changeDuration(positiveLow, positiveHigh);
    case repeatDelay:
        return emitter_->changeRepeatDelay(positiveLow, positiveHigh);
    case timeToLive:
        return emitter_->setTimeToLive(positiveLow, positiveHigh);
    case emissionRate:
        emitter_->rate = value;
        return;
    case angle:
        if (isRandom_[angle])
            emitter_->angle = value;
        else
            emitter_->setAngle(Ogre::Degree(low));
        return;
    case mass:
        emitter_->mass = value;
        return;
    case allDimensions:
        emitter_->allDimensions = value;
        return;
    case particleWidth:
        emitter_->particleWidth = value;
        return;
    case particleHeight:
        emitter_->particleHeight = value;
        return;
    case kNumbers:
        break;
    }
}

} // namespace particles
