// Numbers in lookup-table files.
#pragma once

#include <optional>
#include <string_view>

namespace lut {

/// Takes the number at the front of the text, after white space. Too large gives infinity, too small 0, and
/// "inf" and "nan" are numbers. Without a number the text is left at what stands in its way.
std::optional<float> takeFloat(std::string_view& text);

/// A finite number within the range of float, as keywords need it; otherwise nothing.
std::optional<float> takeFiniteFloat(std::string_view& text);

/// A whole number within the range of int; otherwise nothing.
std::optional<int> takeInt(std::string_view& text);

} // namespace lut
