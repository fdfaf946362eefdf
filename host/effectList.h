// The effects that the engine can make, with their parameters, from the catalogue.
#pragma once

#include "facts/EffectInfo.h"
#include "facts/Param.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Reads the catalogue of an installed engine. The effects that descriptor files describe are those of the
/// resource directory, whichever the catalogue has. Lists of earlier calls stay, for pointers into them were
/// handed out. Throws GraphError: no such file, or one that is no catalogue.
/// @param resourceDirectory  with its trailing separator; empty: without effects from descriptors
void readCatalogue(const std::filesystem::path& catalogue, const std::string& resourceDirectory);

/// All effects, sorted by family and name; none before the first readCatalogue().
const std::vector<KEXSDK::EffectInfo>& listEffects();

/// The effect with this exact GUID or this name, or null. Valid for the life of the process, as is all that
/// these functions answer.
const KEXSDK::EffectInfo* findEffect(std::string_view guidOrName);

/// What the effect reads, standard parameters first; nothing for an unknown GUID.
const std::vector<const KEXSDK::ParamInfo*>& describeParameters(const std::string& guid);

} // namespace host
