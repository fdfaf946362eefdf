// The tool's verbs and options as data, read from the command-line parser: man pages and completions are made
// from what --help shows.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

struct OptionText {
    std::vector<std::string> names; ///< "-e", "--effect"; one name without dashes for a positional
    std::string value;              ///< what it takes: "FILE", "N"; empty for a flag
    std::vector<std::string> choices;
    std::string help;
    bool positional = false;
    bool required = false;
    bool repeats = false;
};

struct VerbText {
    std::string name; ///< the tool's own for the whole
    std::string help;
    std::string footer;
    std::vector<OptionText> options;
    std::vector<VerbText> verbs;
};

VerbText textOf(const CLI::App& app);

/// "Examples:" and "Exit codes:" of a footer with the lines below them; text without heading comes first
/// under "".
std::vector<std::pair<std::string, std::vector<std::string>>> sectionsOf(const std::string& footer);
