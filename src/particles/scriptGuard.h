// Protection of OGRE's start from scripts that it cannot read.
#pragma once

namespace particles {

/// From here on a script of particles or materials that ends with an exception is left where it is, with one
/// line in the log, and the scripts after it are read; OGRE alone would not start. Sections nested too
/// deeply, and scripts that import each other in circles, are refused. Once for every start of OGRE, before
/// scripts are read.
void guardScripts();

} // namespace particles
