// Names and files of GLSL programs.
#pragma once

#include <string>

namespace glslText {

/// What OGRE knows a program by: the digest of its source, or the file's name up to its last dot, and the
/// kind.
std::string programName(const std::string& text, bool isFragment, bool isSourceText);

/// The text of a file in the resource locations; its name may carry folders. A path of its own is read as
/// well. Throws Ogre::FileNotFoundException.
std::string readFile(const std::string& name);

} // namespace glslText
