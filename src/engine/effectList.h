// Every effect that the engine can make, for tools.
#pragma once

#include "model/EffectRegistry.h"
#include "model/Param.h"

#include <vector>

/// Facts of every effect of this build, sorted by family and name; names are unique. Needs no running engine.
std::vector<KEXSDK::EffectInfo> listEffects();

/// The effect with this exact GUID or this command-line name, or null. Valid for the life of the process.
const KEXSDK::EffectInfo* findEffect(std::string_view guidOrName);

/// The parameters that the effect reads, standard ones first.
std::vector<const KEXSDK::ParamInfo*> describeParameters(const std::string& guid);
