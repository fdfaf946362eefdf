// The effects and their parameters as the host library tells them.
#pragma once

#include "facts/EffectInfo.h"
#include "facts/Param.h"

#include <json/value.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// All effects, sorted by family and name. Valid for the life of the process, as is all that follows.
const std::vector<KEXSDK::EffectInfo>& listEffects();

/// The effect with this GUID, or with this name or title in any spelling. Throws LookError.
const KEXSDK::EffectInfo& effectNamed(std::string_view word);

/// The parameters that the effect reads, standard ones first.
const std::vector<const KEXSDK::ParamInfo*>& describeParameters(const KEXSDK::EffectInfo& effect);

/// The catalogue's part of one effect, as JSON text.
std::string catalogueEntry(const KEXSDK::EffectInfo& effect);

/// What the catalogue says of some effects, in their order.
Json::Value catalogueOf(std::span<const KEXSDK::EffectInfo> effects);

} // namespace tool
