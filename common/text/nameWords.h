// Splits the names of parameters and effects into words.
#pragma once

#include <string_view>
#include <vector>

namespace KEXSDK {

/// The words of a name: "u", "white", "Level" of "u_whiteLevel"; "Cube", "LUT", "File" of "CubeLUTFile".
/// Words are letters and digits of ASCII; everything else stands between them. The answer points into the
/// name.
std::vector<std::string_view> wordsOf(std::string_view name);

} // namespace KEXSDK
