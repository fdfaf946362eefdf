// Looks of one effect with example values, which show what it does.
#pragma once

#include "effectengine/Look.h"
#include "facts/EffectInfo.h"

#include <json/value.h>

namespace tool {

/// An effect over "source" and "source-2", which third and later inputs take as well.
/// @param parameters  members of a graph file's "parameters"; those that need a value and have none here get
/// an
///                    example for pictures of width x height
Look exampleLook(const KEXSDK::EffectInfo& effect, unsigned width, unsigned height,
    Json::Value parameters = Json::Value(Json::objectValue));

} // namespace tool
