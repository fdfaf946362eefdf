// Limits for the numbers in particle scripts, beyond which OGRE fails.
#pragma once

namespace Ogre {
class ParticleSystemManager;
}

namespace particles {

/// From here on, script parameters of particle systems and of all emitter, affector and renderer types that
/// the manager knows hold finite numbers within limits; a script that says otherwise gets a line in OGRE's
/// log and the nearest number, or its line is left out. Once for every start of OGRE.
void checkParameters(Ogre::ParticleSystemManager& manager);

} // namespace particles
