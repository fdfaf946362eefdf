// The choice of effects on the command line: by names, by a family, by a word.
#pragma once

#include "facts/EffectInfo.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace tool {

struct EffectChoice {
    std::vector<std::string> names; ///< or titles or GUIDs; empty stands for all
    std::string kind;
    std::string search;
};

/// Adds --kind and --search to a verb.
void addChoiceOptions(CLI::App& command, EffectChoice& choice);

/// The effects in the order of the names, or of the list. Throws ToolError and GraphError: no such effect or
/// family; the result may be empty when nothing holds the word.
std::vector<KEXSDK::EffectInfo> chosen(const EffectChoice& choice);

/// The families of a list, sorted.
std::vector<std::string> familiesOf(const std::vector<KEXSDK::EffectInfo>& effects);

} // namespace tool
