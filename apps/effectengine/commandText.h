// The tool's verbs and options as data, read from the command-line parser, for man pages and completions.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace tool {

struct OptionText {
    std::vector<std::string> names; ///< "-e", "--effect"; one name without dashes for a positional
    std::string value;              ///< name of its value: "FILE", "N"; empty for a flag
    std::vector<std::string> choices;
    std::string help;
    bool positional = false;
    bool required = false;
    bool repeats = false;
};

struct VerbText {
    std::string name; ///< of the verb, or of the tool
    std::string help;
    std::string footer;
    std::vector<OptionText> options;
    std::vector<VerbText> verbs;
};

VerbText textOf(const CLI::App& app);

/// The headings of a footer, such as "Examples:", with the lines below each; lines before the first heading
/// come first, under "".
std::vector<std::pair<std::string, std::vector<std::string>>> sectionsOf(const std::string& footer);

} // namespace tool
