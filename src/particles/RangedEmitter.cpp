// The start of particles: how many, where, and with which properties.
#include "particles/RangedEmitter.h"

#include "particles/affectors.h"

#include <OgreMath.h>
#include <OgreParticleSystem.h>

#include <algorithm>
#include <cmath>
#include <limits>

using Ogre::Math;
using Ogre::Vector3;

namespace particles {

namespace {

/// The most particles that OGRE can count for one emitter and step, less the fraction that is carried on.
constexpr float kMostOfStep = std::numeric_limits<unsigned short>::max() - 1;

/// The size of the spaces of OGRE's own types unless their scripts set another.
constexpr Ogre::Real kUsualSize = 100;

/// A random point of the unit ball, equally likely everywhere, by trial and rejection.
Vector3 withinBall()
{
    while (true) {
        const Vector3 point(Math::SymmetricRandom(), Math::SymmetricRandom(), Math::SymmetricRandom());
        if (point.squaredLength() <= 1)
            return point;
    }
}

/// A random point of a cylinder with unit radius and height -1..1, or of its surface.
Vector3 onCylinder(bool edge)
{
    const float turn = Math::RangeRandom(0, Math::TWO_PI);
    const float radius = edge ? 1 : std::sqrt(Math::UnitRandom());
    return {radius * std::cos(turn), radius * std::sin(turn), Math::SymmetricRandom()};
}

} // namespace

float DynamicValue::draw() const { return random ? float(Math::RangeRandom(low, high)) : low; }

RangedEmitter::RangedEmitter(Ogre::ParticleSystem* system, Type type) : ParticleEmitter(system), type_(type)
{
    mType = kTypes[std::size_t(type)];
    if (type != Type::ranged && type != Type::point) {
        mDirection = Vector3::UNIT_Z;
        mUp = Vector3::UNIT_Y;
        size = Vector3(kUsualSize);
    }
    defineParameters();
}

unsigned short RangedEmitter::_getEmissionCount(Ogre::Real seconds)
{
    if (seconds > 0) {
        begun_ = true;
        if (rate.given)
            mEmissionRate = std::clamp(rate.draw(), 0.0f, kLargestRate);
    }
    const Ogre::Real wished = mEmissionRate;
    if (wished * seconds > kMostOfStep)
        mEmissionRate = kMostOfStep / seconds;
    const unsigned short count = genConstantEmissionCount(seconds);
    mEmissionRate = wished;
    return count;
}

void RangedEmitter::changeDuration(float low, float high)
{
    changeClock(mEnabled, mDurationMin, mDurationMax, mDurationRemain, low, high);
}

void RangedEmitter::changeRepeatDelay(float low, float high)
{
    changeClock(!mEnabled, mRepeatDelayMin, mRepeatDelayMax, mRepeatDelayRemain, low, high);
}

void RangedEmitter::changeClock(
    bool runs, Ogre::Real& low, Ogre::Real& high, Ogre::Real& remaining, float newLow, float newHigh)
{
    const bool unlimited = high == 0;
    const bool fixed = low == high && newLow == newHigh;
    const Ogre::Real more = newHigh - high;
    low = newLow;
    high = newHigh;
    if (!begun_ || (runs && unlimited))
        initDurationRepeat();
    else if (runs && fixed)
        remaining += more;
}

void RangedEmitter::_initParticle(Ogre::Particle* particle)
{
    ParticleEmitter::_initParticle(particle);
    particle->mPosition = type_ == Type::ranged ? startWithinShape() : startAsOgreDoes();
    genEmissionColour(particle->mColour);
    genEmissionDirection(particle->mPosition, particle->mDirection);
    genEmissionVelocity(particle->mDirection);
    particle->mTimeToLive = particle->mTotalTimeToLive = genEmissionTTL();
    setDimensions(*particle);
    if (mass.given)
        announceMass(*mParent, mass.draw());
}

Vector3 RangedEmitter::startWithinShape() const
{
    Vector3 offset = Vector3::ZERO;
    switch (shape) {
    case Shape::point:
        return mPosition;
    case Shape::box:
        offset = {Math::SymmetricRandom(), Math::SymmetricRandom(), Math::SymmetricRandom()};
        break;
    case Shape::ellipsoid:
        offset = withinBall();
        break;
    case Shape::ring:
    case Shape::cylinder:
        offset = onCylinder(shape == Shape::ring);
        break;
    }
    offset = offset * size * 0.5f;
    return mPosition + mUp.crossProduct(mDirection) * offset.x + mUp * offset.y + mDirection * offset.z;
}

Vector3 RangedEmitter::startAsOgreDoes() const
{
    if (type_ == Type::point)
        return mPosition;
    Ogre::Real x = 0;
    Ogre::Real y = 0;
    Ogre::Real z = 0;
    const auto drawInCube = [&] {
        x = Math::SymmetricRandom();
        y = Math::SymmetricRandom();
        z = Math::SymmetricRandom();
    };
    switch (type_) {
    case Type::box:
        drawInCube();
        break;
    case Type::cylinder:
        do
            drawInCube();
        while (x * x + y * y > 1);
        break;
    case Type::ellipsoid:
        do
            drawInCube();
        while (x * x + y * y + z * z > 1);
        break;
    case Type::hollowEllipsoid: {
        const Ogre::Radian around(Math::RangeRandom(0, Math::TWO_PI));
        const Ogre::Radian down(Math::RangeRandom(0, Math::PI));
        x = Math::RangeRandom(inner.x, 1);
        y = Math::RangeRandom(inner.y, 1);
        z = Math::RangeRandom(inner.z, 1);
        const Ogre::Real radius = Math::Sin(down);
        x = x * Math::Cos(around) * radius;
        y = y * Math::Sin(around) * radius;
        z = z * Math::Cos(down);
        break;
    }
    case Type::ring: {
        const Ogre::Radian around(Math::RangeRandom(0, Math::TWO_PI));
        x = Math::RangeRandom(inner.x, 1);
        y = Math::RangeRandom(inner.y, 1);
        x = x * Math::Sin(around);
        y = y * Math::Cos(around);
        z = Math::SymmetricRandom();
        break;
    }
    case Type::point:
    case Type::ranged:
        break;
    }
    const Vector3 left = mUp.crossProduct(mDirection) * (size.x * 0.5f);
    const Vector3 up = mUp * (size.y * 0.5f);
    const Vector3 along = mDirection * (size.z * 0.5f);
    return mPosition + x * left + y * up + z * along;
}

void RangedEmitter::genEmissionDirection(const Vector3& position, Vector3& direction)
{
    if (angle.random && !mUseDirPositionRef)
        direction = mDirection.randomDeviant(Ogre::Degree(angle.draw()), mUp);
    else
        ParticleEmitter::genEmissionDirection(position, direction);
}

void RangedEmitter::setDimensions(Ogre::Particle& particle) const
{
    if (!allDimensions.given && !particleWidth.given && !particleHeight.given)
        return;
    float width = mParent->getDefaultWidth();
    float height = mParent->getDefaultHeight();
    if (allDimensions.given)
        width = height = allDimensions.draw();
    if (particleWidth.given)
        width = particleWidth.draw();
    if (particleHeight.given)
        height = particleHeight.draw();
    particle.setDimensions(std::max(width, 0.0f), std::max(height, 0.0f)); // OGRE ends the process over less
}

} // namespace particles
