// Man pages and completions, made from the tool's verbs as data.
#pragma once

#include "effectengine/commandText.h"

namespace tool {

/// The page of the whole tool (verb null), or of one verb, in roff.
std::string manPage(const VerbText& tool, const VerbText* verb, const std::string& version);

// Completion scripts for shells. They ask the tool for effects, families and parameters while the user types.
std::string bashCompletion(const VerbText& tool);
std::string zshCompletion(const VerbText& tool);
std::string fishCompletion(const VerbText& tool);

} // namespace tool
