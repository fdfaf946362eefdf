// Where a fragment program reads its pictures, as far as its text shows it plainly.
#pragma once

#include <set>
#include <string>

namespace glslReads {

/// The uniforms of type sampler2D that a program reads at "textureCoord" and nowhere else: for each of its
/// pixels one place of the picture. A text that leaves room for doubt gives fewer, or none.
std::set<std::string> atOwnPixelOnly(const std::string& source);

} // namespace glslReads
