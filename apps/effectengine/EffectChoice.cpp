// Search of the list of effects by names, by family and by a word.
#include "effectengine/EffectChoice.h"

#include "effectengine/ToolError.h"
#include "effectengine/effectList.h"
#include "text/nearest.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace tool {

using KEXSDK::EffectInfo;

namespace {

std::string lower(std::string text)
{
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

} // namespace

void addChoiceOptions(CLI::App& command, EffectChoice& choice)
{
    command.add_option("--kind", choice.kind, "only effects of this family")->type_name("FAMILY");
    command
        .add_option(
            "--search", choice.search, "only effects whose name, title, summary or GUID holds this text")
        ->type_name("TEXT");
}

std::vector<std::string> familiesOf(const std::vector<EffectInfo>& effects)
{
    std::set<std::string> families;
    for (const EffectInfo& effect : effects)
        families.insert(effect.family);
    return {families.begin(), families.end()};
}

std::vector<EffectInfo> chosen(const EffectChoice& choice)
{
    std::vector<EffectInfo> effects = listEffects();
    const auto families = familiesOf(effects);
    if (!choice.kind.empty() && std::ranges::find(families, choice.kind) == families.end())
        throw ToolError(ExitCode::usage,
            "no kind \"" + choice.kind + "\""
                + text::didYouMean({families.begin(), families.end()}, choice.kind));
    if (!choice.names.empty()) {
        effects.clear();
        for (const std::string& name : choice.names)
            effects.push_back(effectNamed(name));
    }
    const std::string wanted = lower(choice.search);
    std::erase_if(effects, [&](const EffectInfo& e) {
        const std::string words = lower(e.name + "\n" + e.title + "\n" + e.summary + "\n" + e.guid);
        return (!choice.kind.empty() && e.family != choice.kind) || words.find(wanted) == std::string::npos;
    });
    return effects;
}

} // namespace tool
