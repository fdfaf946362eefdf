// list and describe: what there is to apply.
#include "effectengine/EffectStep.h"
#include "effectengine/commands.h"

#include <cstdio>
#include <memory>

namespace {

const char* typeName(KEXSDK::ParamType type)
{
    switch (type) {
    case KEXSDK::ParamType::integer:
        return "integer";
    case KEXSDK::ParamType::real:
        return "float";
    case KEXSDK::ParamType::integerArray:
        return "integers";
    case KEXSDK::ParamType::realArray:
        return "floats";
    case KEXSDK::ParamType::filePath:
        return "file";
    }
    return "";
}

std::string valueText(const KEXSDK::ParamInfo& param)
{
    if (!param.declared)
        return "not set";
    char text[32];
    std::snprintf(text, sizeof text, "%g", param.value[0]);
    return text;
}

void list(const std::string& kind, const std::string& search)
{
    for (const KEXSDK::EffectInfo& effect : listEffects()) {
        if (!kind.empty() && effect.family != kind)
            continue;
        if ((effect.name + effect.title + effect.summary).find(search) == std::string::npos)
            continue;
        std::printf("%-28s %-14s %s\n", effect.name.c_str(), effect.family.c_str(), effect.summary.c_str());
    }
}

void describe(const std::string& nameOrGuid)
{
    const KEXSDK::EffectInfo effect = stepFor(nameOrGuid).effect;
    std::printf("%s (%s)\n%s\n\nGUID    %s\nfamily  %s\ninputs  %u\n\n", effect.name.c_str(),
        effect.title.c_str(), effect.summary.c_str(), effect.guid.c_str(), effect.family.c_str(),
        effect.inputs);
    std::printf("%-20s %-9s %-8s %-12s %s\n", "parameter", "type", "default", "range", "meaning");
    for (const KEXSDK::ParamInfo* param : describeParameters(effect.guid)) {
        char range[48] = "";
        if (param->type != KEXSDK::ParamType::filePath)
            std::snprintf(range, sizeof range, "%g..%g", param->low, param->high);
        std::string meaning = param->help;
        if (*param->unit)
            meaning += std::string(" (") + param->unit + ")";
        if (*param->choices)
            meaning += std::string(": ") + param->choices;
        std::printf("%-20s %-9s %-8s %-12s %s\n", param->name, typeName(param->type),
            valueText(*param).c_str(), range, meaning.c_str());
    }
}

} // namespace

void addListCommand(CLI::App& tool)
{
    struct Options {
        std::string kind;
        std::string search;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* const command = tool.add_subcommand("list", "Lists the effects.");
    command->add_option("--kind", options->kind, "only effects of this family");
    command->add_option("--search", options->search, "only effects whose name or summary holds this text");
    command->callback([options] { list(options->kind, options->search); });
}

void addDescribeCommand(CLI::App& tool)
{
    const auto effect = std::make_shared<std::string>();
    CLI::App* const command = tool.add_subcommand("describe", "Shows an effect and its parameters.");
    command->add_option("EFFECT", *effect, "name or GUID")->required();
    command->callback([effect] { describe(*effect); });
}
