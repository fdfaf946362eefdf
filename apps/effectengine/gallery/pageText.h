// Text as HTML pages need it.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace tool {

/// The text with characters escaped that mean something in HTML texts and attributes.
std::string escaped(std::string_view text);

/// The template with every {{name}} replaced by the text of that name.
std::string filledIn(std::string_view page, const std::map<std::string, std::string, std::less<>>& texts);

} // namespace tool
