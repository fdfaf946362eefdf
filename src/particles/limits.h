// Limits of a particle system for scripts and attributes.
#pragma once

#include "core/Types.h"

namespace particles {

/// OGRE draws the particles of a system with 16-bit indices of four corners each.
constexpr i32 kLargestQuota = 16383;
constexpr i32 kLargestEmitterQuota = 100;

} // namespace particles
