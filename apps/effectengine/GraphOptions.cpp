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

host::GraphDescription GraphOptions::description(const std::string& effect) const
{
    const Values& v = *values_;
    host::GraphDescription graph;
    if (!v.graph.empty())
        graph = host::loadGraph(v.graph);
    if (!v.preset.empty())
        graph = host::loadGraph(v.preset);
    if (!effect.empty())
        graph.append(effect);
    auto nextEffect = v.effects.begin();
    auto nextParameter = v.parameters.begin();
    for (const CLI::Option* const option : command_.parse_order()) {
        if (option == v.effectOption)
            graph.append(*nextEffect++);
        if (option == v.parameterOption)
            graph.setParameter(*nextParameter++);
    }
    graph.finish();
    const std::string file = v.graph.empty() ? v.preset : v.graph;
    for (const std::string& line : graph.warnings())
        warn(file.empty() ? line : file + ": " + line);
    if (!v.savedPreset.empty())
        writeTextFile(v.savedPreset, host::graphText(graph));
    return graph;
}

} // namespace tool
