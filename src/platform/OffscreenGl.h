// OpenGL without a display: stands in for the window system behind OGRE's OpenGL render system.
#pragma once

#include <string>

/// OGRE's OpenGL plug-in knows only GLX and opens the X display while it loads. Its calls to Xlib and GLX,
/// and those of no other object in the process, can be led to functions over EGL that need no display server:
/// its "window" is then a small off-screen surface. One thread at a time.
namespace offscreenGl {

/// Leads the calls of the plug-in to EGL, before or after the plug-in's start, but not while it is in use.
/// @param pluginFile  the versioned file, with directories
/// @return false, with the calls going to X as before, when another user has the plug-in already, when it
///         calls something unknown, or when EGL gives no desktop OpenGL
bool enable(const std::string& pluginFile);

/// Leads the calls back to X.
void disable();

/// For tests: while forbidden, enable() fails.
void setAllowed(bool allowed);

} // namespace offscreenGl
