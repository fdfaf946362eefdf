// Where and how particles of the type "Ranged" start.
#include "particles/RangedEmitter.h"

#include "particles/affectors.h"

#include <OgreMath.h>
#include <OgreParticleSystem.h>

#include <algorithm>
#include <cmath>

using Ogre::Math;
using Ogre::Vector3;

namespace particles {

const char* const RangedEmitter::kType = "Ranged";

namespace {

/// A point of the unit ball: by trial, so that it is as likely everywhere.
Vector3 withinBall()
{
    while (true) {
        const Vector3 point(Math::SymmetricRandom(), Math::SymmetricRandom(), Math::SymmetricRandom());
        if (point.squaredLength() <= 1)
            return point;
    }
}

/// A point of the unit disc, or of its edge, on a cylinder of height -1..1.
Vector3 onCylinder(bool edge)
{
    const float turn = Math::RangeRandom(0, Math::TWO_PI);
    const float radius = edge ? 1 : std::sqrt(Math::UnitRandom());
    return {radius * std::cos(turn), radius * std::sin(turn), Math::SymmetricRandom()};
}

} // namespace

float DynamicValue::draw() const { return random ? float(Math::RangeRandom(low, high)) : low; }

RangedEmitter::RangedEmitter(Ogre::ParticleSystem* system) : ParticleEmitter(system)
{
    mType = kType;
    defineParameters();
}

unsigned short RangedEmitter::_getEmissionCount(Ogre::Real seconds)
{
    if (seconds > 0 && rate.given)
        mEmissionRate = std::clamp(rate.draw(), 0.0f, kLargestRate);
    return genConstantEmissionCount(seconds);
}

void RangedEmitter::_initParticle(Ogre::Particle* particle)
{
    ParticleEmitter::_initParticle(particle);
    particle->mPosition = startWithinShape();
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
