// Every effect that the engine can make, for tools.
#pragma once

#include "facts/Param.h"
#include "model/EffectRegistry.h"

#include <vector>

/// Adds the shader effects that the descriptor files below a resource directory describe to the list, in
/// place of those of an earlier call. Needs no running engine and no GPU; a file that cannot be read is left
/// out.
/// @param resourceDirectory  with its trailing separator, as the engine is initialised with it
void listShaderEffectsOf(const std::string& resourceDirectory);

/// Facts of every effect of this build, and of the shader effects once they are listed, sorted by family and
/// name; names are unique. Needs no running engine.
std::vector<KEXSDK::EffectInfo> listEffects();

/// The effect with this exact GUID or this command-line name, or null. Valid for the life of the process, as
/// is what describeParameters answers.
const KEXSDK::EffectInfo* findEffect(std::string_view guidOrName);

/// The parameters that the effect reads, standard ones first; of an unknown GUID the standard ones alone.
std::vector<const KEXSDK::ParamInfo*> describeParameters(const std::string& guid);
