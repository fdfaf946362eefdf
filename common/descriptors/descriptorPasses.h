// The member "PASSES" of a descriptor: the programs that an effect draws one after another.
#pragma once

#include "descriptors/ShaderDescriptor.h"

#include <json/value.h>

namespace shader {

/// Reads the passes into a descriptor whose inputs and textures have been read. Unlike other members, passes
/// are taken as a whole or not at all: with the first fault there are none, and passFault says what it is.
/// Throws std::bad_alloc.
/// @param list  the member's value; null, for a descriptor without passes, changes nothing
void readPasses(const Json::Value& list, ShaderDescriptor& descriptor);

} // namespace shader
