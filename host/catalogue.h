// Every effect and parameter as JSON: what effects.json and `list --json` hold.
#pragma once

#include "facts/Param.h"
#include "model/EffectRegistry.h"

#include <json/value.h>

#include <span>
#include <string>

namespace host {

/// Facts of one effect with its parameters. docs/catalogue.md names the members.
Json::Value catalogueEntry(const KEXSDK::EffectInfo& effect);

/// {"effectengine": 1, "effects": [...]} over the effects, in their order.
Json::Value catalogue(std::span<const KEXSDK::EffectInfo> effects);

/// "integer", "float", "integers", "floats", "file".
const char* typeName(KEXSDK::ParamType type);

/// "none", "frames", "from-start".
const char* historyName(const KEXSDK::History& history);

/// "kept", "opaque", "computed", "loose".
const char* alphaName(KEXSDK::Alpha alpha);

} // namespace host
