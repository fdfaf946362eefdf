// Effects and parameters as JSON: what effects.json holds.
#pragma once

#include "facts/EffectInfo.h"
#include "facts/Param.h"

#include <json/value.h>

#include <span>

namespace catalogue {

/// Facts of one effect with its parameters. docs/catalogue.md names the members.
Json::Value entryOf(const KEXSDK::EffectInfo& effect, std::span<const KEXSDK::ParamInfo* const> parameters);

/// {"effectengine": 1, "effects": entries}
Json::Value allOf(Json::Value entries);

/// "integer", "float", "integers", "floats", "file".
const char* typeName(KEXSDK::ParamType type);

} // namespace catalogue
