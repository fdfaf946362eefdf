// Titles as names for programs.
#pragma once

#include <string>
#include <string_view>

namespace text {

/// Small letters and digits of ASCII with one hyphen for what lies between them: "bubbles-per-second" of
/// "Bubbles per Second".
inline std::string kebabCase(std::string_view title)
{
    std::string name;
    for (const char c : title) {
        const bool capital = c >= 'A' && c <= 'Z';
        if (capital || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            name += capital ? char(c - 'A' + 'a') : c;
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    if (!name.empty() && name.back() == '-')
        name.pop_back();
    return name;
}

} // namespace text
