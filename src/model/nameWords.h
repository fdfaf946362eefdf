// The words of names that programs use.
#pragma once

#include <string_view>
#include <vector>

namespace KEXSDK {

/// "u", "white", "Level" of "u_whiteLevel"; "Cube", "LUT", "File" of "CubeLUTFile". Words are letters and
/// digits of ASCII; everything else stands between them. They point into the name.
std::vector<std::string_view> wordsOf(std::string_view name);

} // namespace KEXSDK
