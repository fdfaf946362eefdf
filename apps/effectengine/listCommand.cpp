// list and describe: what there is to apply.
#include "effectengine/EffectChoice.h"
#include "effectengine/Look.h"
#include "effectengine/commands.h"
#include "effectengine/effectList.h"
#include "facts/catalogueJson.h"
#include "text/jsonText.h"

#include <cstdio>
#include <memory>

namespace tool {

using KEXSDK::EffectInfo;

namespace {

struct ListOptions {
    EffectChoice choice;
    bool json = false;
    bool names = false;
    bool families = false;
};

void list(const ListOptions& options)
{
    const std::vector<EffectInfo> effects = chosen(options.choice);
    if (options.json) {
        std::fputs(text::jsonText(catalogueOf(effects)).c_str(), stdout);
        return;
    }
    if (options.families) {
        for (const std::string& family : familiesOf(effects))
            std::puts(family.c_str());
        return;
    }
    for (const EffectInfo& effect : effects) {
        if (options.names)
            std::puts(effect.name.c_str());
        else
            std::printf(
                "%-28s %-14s %s\n", effect.name.c_str(), effect.family.c_str(), effect.summary.c_str());
    }
}

std::string valueText(const KEXSDK::ParamInfo& param)
{
    const auto number = [](double value) {
        char text[32];
        std::snprintf(text, sizeof text, "%g", value);
        return std::string(text);
    };
    if (!param.declared)
        return param.hostDefault ? number(*param.hostDefault) : "not set";
    std::string values;
    for (u32 i = 0; i < param.elements; ++i)
        values += (i ? "," : "") + number(param.value[i]);
    return values;
}

std::string dependsOn(const EffectInfo& effect)
{
    if (effect.history.frames == KEXSDK::History::kFromStart)
        return "every frame since the first";
    if (effect.history.frames > 0)
        return "this frame and up to " + std::to_string(effect.history.frames) + " before it";
    return "this frame alone";
}

const char* alphaText(KEXSDK::Alpha alpha)
{
    switch (alpha) {
    case KEXSDK::Alpha::kept:
        return "kept";
    case KEXSDK::Alpha::opaque:
        return "becomes opaque";
    case KEXSDK::Alpha::computed:
        return "computed";
    case KEXSDK::Alpha::loose:
        return "computed; opaque if all inputs are";
    }
    return "";
}

void printFacts(const EffectInfo& effect)
{
    std::printf("%s (%s)\n%s\n\n", effect.name.c_str(), effect.title.c_str(), effect.summary.c_str());
    std::printf("GUID      %s\nfamily    %s\ninputs    %u\nneeds     %s\ndepends   on %s\nrandom    "
                "%s\nalpha     %s\n\n",
        effect.guid.c_str(), effect.family.c_str(), effect.inputs, effect.needsGpu ? "the GPU" : "no GPU",
        dependsOn(effect).c_str(), effect.random ? "yes (--seed repeats a result)" : "no",
        alphaText(effect.alpha));
}

struct DescribeOptions {
    std::string effect;
    bool json = false;
    bool names = false;
};

void describe(const DescribeOptions& options)
{
    const EffectInfo& effect = effectNamed(options.effect);
    if (options.names) {
        for (const KEXSDK::ParamInfo* const param : describeParameters(effect))
            std::puts(param->name);
        return;
    }
    if (options.json) {
        std::fputs(catalogueEntry(effect).c_str(), stdout);
        return;
    }
    printFacts(effect);
    std::printf(
        "%-20s %-20s %-9s %-8s %-12s %s\n", "parameter", "title", "type", "default", "advised", "meaning");
    for (const KEXSDK::ParamInfo* param : describeParameters(effect)) {
        char range[48] = "";
        if (param->low < param->high)
            std::snprintf(range, sizeof range, "%g..%g", param->low, param->high);
        std::string meaning = param->help;
        if (*param->unit)
            meaning += std::string(" (") + param->unit + ")";
        if (*param->choices)
            meaning += std::string(": ") + param->choices;
        std::printf("%-20s %-20s %-9s %-8s %-12s %s\n", param->name, titleOf(*param).c_str(),
            catalogue::typeName(param->type), valueText(*param).c_str(), range, meaning.c_str());
    }
}

} // namespace

void addListCommand(CLI::App& tool)
{
    const auto options = std::make_shared<ListOptions>();
    CLI::App* const command = tool.add_subcommand("list", "Lists the effects.");
    addChoiceOptions(*command, options->choice);
    command->add_flag("--json", options->json, "the catalogue: every fact and parameter as JSON");
    command->add_flag("--names", options->names, "names alone, one a line");
    command->add_flag("--families", options->families, "the families alone, one a line");
    command->footer("Examples:\n"
                    "  effectengine list --kind transition\n"
                    "  effectengine list --search blur\n"
                    "  effectengine list --json > effects.json");
    command->callback([options] { list(*options); });
}

void addDescribeCommand(CLI::App& tool)
{
    const auto options = std::make_shared<DescribeOptions>();
    CLI::App* const command = tool.add_subcommand("describe", "Shows an effect and its parameters.");
    command->add_option("EFFECT", options->effect, "name, title or GUID")->required();
    command->add_flag("--json", options->json, "as JSON, as in the catalogue");
    command->add_flag("--names", options->names, "the parameters' names alone, one a line");
    command->footer("Examples:\n"
                    "  effectengine describe hue-shift\n"
                    "  effectengine describe \"Black and White\"");
    command->callback([options] { describe(*options); });
}

} // namespace tool
