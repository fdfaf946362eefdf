// Names of types and properties, made from the catalogue's.
#pragma once

#include "EffectEngine/EffectEngineHost.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bridge {

/// "EffectGlow" for "glow", with a prefix: the name of a GObject type.
std::string typeName(std::string_view prefix, std::string_view effect);

/// A property of an element: a parameter that holds one value, or one number of a parameter that holds
/// several.
struct Property {
    const EffectHostParameter* parameter;
    std::size_t element;
    std::string name;
    double initial = 0; ///< what elements begin with: the same bytes as when nothing is set
};

/// The properties of an effect in the order of its parameters, without those that hosts set for every frame.
std::vector<Property> propertiesOf(const EffectHostEffect& effect);

} // namespace bridge
