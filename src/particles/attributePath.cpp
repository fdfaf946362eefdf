// Reading of selectors and attribute from a name.
#include "particles/attributePath.h"

namespace particles {

namespace {

constexpr std::size_t kSelectorLength = 4;

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

int* selected(AttributePath& path, char letter)
{
    switch (letter) {
    case 'T':
        return &path.technique;
    case 'E':
        return &path.emitter;
    case 'A':
        return &path.affector;
    }
    return nullptr;
}

} // namespace

AttributePath parseAttributePath(std::string_view name)
{
    AttributePath path;
    for (; name.size() >= kSelectorLength && name[0] == ':'; name.remove_prefix(kSelectorLength)) {
        int* const index = selected(path, name[1]);
        if (!index || !isDigit(name[2]) || !isDigit(name[3]))
            return {};
        // Emitters and affectors are those of a technique.
        if (name[1] == 'T' || path.technique != kNothing)
            *index = (name[2] - '0') * 10 + (name[3] - '0');
    }
    if (!name.starts_with('.'))
        return {};
    path.attribute = name.substr(1);
    return path;
}

} // namespace particles
