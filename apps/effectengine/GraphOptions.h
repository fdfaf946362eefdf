// -e, -p, --graph, --preset and --save-preset of the verbs that run effects.
#pragma once

#include "effectengine/Look.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tool {

/// Prints the look's warnings, with the file's name in front of each unless it is empty.
void warnOf(const Look& look, const std::string& file);

/// Adds the options to a verb and makes the graph that they describe.
class GraphOptions {
public:
    explicit GraphOptions(CLI::App& command);

    /// Whether -e, --graph or --preset was given; if not, the verb may take an effect's name as a word.
    bool given() const;

    /// The name, without extension, of the file of --graph or --preset, if the look is what that file says.
    std::string fileStem() const;

    /// The look, checked. Parameters belong to the effect named last before them, and without -e to
    /// `effect` or to the preset's last one. Warnings go to stderr; --save-preset is obeyed unless nothing
    /// may be written. Throws ToolError and LookError.
    Look look(const std::string& effect = {}, bool mayWrite = true) const;

private:
    struct Values;

    CLI::App& command_;
    std::shared_ptr<Values> values_;
};

/// The look of one transition with these parameters, NAME=VALUE. Warnings go to stderr. Throws ToolError
/// when the effect does not take two pictures, and LookError.
Look transitionLook(const std::string& effect, const std::vector<std::string>& parameters);

} // namespace tool
