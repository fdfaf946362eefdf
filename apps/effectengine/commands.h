// Functions that add the tool's verbs to the parser; a verb's work runs while the command line is parsed.
#pragma once

#include "effectengine/Session.h"

#include <CLI/CLI.hpp>

namespace tool {

void addListCommand(CLI::App& tool);
void addDescribeCommand(CLI::App& tool);
void addApplyCommand(CLI::App& tool, const SessionOptions& session);
void addWatchCommand(CLI::App& tool, const SessionOptions& session);
void addLutCommand(CLI::App& tool);
void addTransitionCommand(CLI::App& tool, const SessionOptions& session);
void addManCommand(CLI::App& tool);
void addCompletionCommand(CLI::App& tool);
void addBenchCommand(CLI::App& tool, const SessionOptions& session);
void addSheetCommand(CLI::App& tool, const SessionOptions& session);
void addDoctorCommand(CLI::App& tool, const SessionOptions& session);
void addGalleryCommand(CLI::App& tool, const SessionOptions& session);

} // namespace tool
