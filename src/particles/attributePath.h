// Names of particle attributes: ":T00:E01.EmissionRate".
#pragma once

#include <string_view>

namespace particles {

constexpr int kNothing = -1;

/// What a name selects, and the attribute of it.
struct AttributePath {
    int technique = kNothing;
    int emitter = kNothing;
    int affector = kNothing;
    std::string_view attribute; ///< points into the name

    friend bool operator==(const AttributePath&, const AttributePath&) = default;
};

/// True for names that stand for attributes, well-formed or not.
constexpr bool isAttributeName(std::string_view name)
{
    return name.starts_with('.') || name.starts_with(':');
}

/// Reads selectors, each ":" with "T", "E" or "A" and two digits, and the attribute behind the ".". A
/// malformed name has no attribute.
AttributePath parseAttributePath(std::string_view name);

} // namespace particles
