// Names of GLSL programs, and their texts.
#pragma once

#include <string>

namespace glslText {

/// What OGRE knows a program by: the digest of its source, or the file's name up to its last dot, and the
/// kind.
std::string programName(const std::string& text, bool isFragment, bool isSourceText);

/// The text of a file in the resource locations, or a text itself, with the files that it includes in place.
/// Throws std::exception when a file cannot be had, includes itself, or all becomes too long; the exception's
/// text is one sentence for the log.
std::string complete(const std::string& text, bool isSourceText);

} // namespace glslText
