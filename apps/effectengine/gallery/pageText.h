// Text that goes into pages.
#pragma once

#include <map>
#include <string>
#include <string_view>

/// For the text and the attributes of HTML elements.
std::string escaped(std::string_view text);

/// The page with every {{name}} replaced by the text of that name.
std::string filledIn(std::string_view page, const std::map<std::string, std::string, std::less<>>& texts);
