// The member "PARAMS" of a descriptor: what tools tell about an effect's parameters.
#pragma once

#include "descriptors/ShaderDescriptor.h"

#include <json/value.h>

namespace shader {

/// A text; empty when it is none, or holds control characters: these texts reach logs and terminals.
std::string plainText(const Json::Value& value);

/// Appends the entries that name a parameter, in their order; of two with one name the first counts.
/// Throws std::bad_alloc.
void readParams(const Json::Value& list, ShaderDescriptor& descriptor);

} // namespace shader
