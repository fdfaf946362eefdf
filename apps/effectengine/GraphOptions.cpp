// From options in the order of the command line to a graph.
#include "effectengine/GraphOptions.h"

#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"

namespace tool {

struct GraphOptions::Values {
    std::vector<std::string> effects;
    std::vector<std::string> parameters;
    std::string graph;
    std::string preset;
    std::string savedPreset;
    CLI::Option* effectOption = nullptr;
    CLI::Option* parameterOption = nullptr;
};

void warnOf(const Look& look, const std::string& file)
{
    for (const char* const line : std::span(look.info().warnings, look.info().warningCount))
        warn(file.empty() ? line : file + ": " + line);
}

GraphOptions::GraphOptions(CLI::App& command) : command_(command), values_(std::make_shared<Values>())
{
    Values& v = *values_;
    v.effectOption = command
                         .add_option("-e,--effect", v.effects,
                             "effect of a chain, by name, title or GUID; repeat in order")
                         ->allow_extra_args(false)
                         ->type_name("EFFECT");
    v.parameterOption =
        command.add_option("-p,--param", v.parameters, "parameter of the effect before it, by name or title")
            ->allow_extra_args(false)
            ->type_name("NAME=VALUE");
    CLI::Option* const graph =
        command.add_option("--graph", v.graph, "JSON file with a graph of effects and keyframes")
            ->type_name("FILE")
            ->excludes(v.effectOption)
            ->excludes(v.parameterOption);
    command.add_option("--preset", v.preset, "saved effects to start from; -e and -p go on from there")
        ->type_name("FILE")
        ->excludes(graph);
    command.add_option("--save-preset", v.savedPreset, "write the effects and parameters to a JSON file")
        ->type_name("FILE");
}

bool GraphOptions::given() const
{
    return !values_->effects.empty() || !values_->graph.empty() || !values_->preset.empty();
}

std::string GraphOptions::fileStem() const
{
    const Values& v = *values_;
    return v.effects.empty() ? std::filesystem::path(v.graph.empty() ? v.preset : v.graph).stem().string()
                             : "";
}

Look GraphOptions::look(const std::string& effect, bool mayWrite) const
{
    const Values& v = *values_;
    const std::string file = v.graph.empty() ? v.preset : v.graph;
    Look look = file.empty() ? Look() : Look::fromFile(file);
    if (!effect.empty())
        look.append(effect);
    auto nextEffect = v.effects.begin();
    auto nextParameter = v.parameters.begin();
    for (const CLI::Option* const option : command_.parse_order()) {
        if (option == v.effectOption)
            look.append(*nextEffect++);
        if (option == v.parameterOption)
            look.assign(*nextParameter++);
    }
    warnOf(look, file);
    if (mayWrite && !v.savedPreset.empty())
        writeTextFile(v.savedPreset, look.info().json);
    return look;
}

Look transitionLook(const std::string& effect, const std::vector<std::string>& parameters)
{
    Look look;
    look.append(effect);
    for (const std::string& parameter : parameters)
        look.assign(parameter);
    if (look.info().inputs != 2)
        throw ToolError(ExitCode::usage, "effect " + std::string(look.info().output) + " is no transition");
    warnOf(look, "");
    return look;
}

} // namespace tool
