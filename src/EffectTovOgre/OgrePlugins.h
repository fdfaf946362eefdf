// OGRE's plug-ins, found where this build of OGRE installed them.
#pragma once

#include <string>

namespace Ogre {
class Root;
}

namespace ogrePlugins {

constexpr const char* kRenderSystemName = "OpenGL Rendering Subsystem";

/// Loads a plug-in. A failure is logged; a second load of the same one does nothing.
/// @param file  without directory and suffix
bool load(Ogre::Root& root, const std::string& file);

/// Loads the OpenGL render system: off-screen if that works, else for the display that $DISPLAY names.
/// Without either, or with a display that does not answer, it logs the failure and answers false.
bool loadRenderSystem(Ogre::Root& root);

} // namespace ogrePlugins
