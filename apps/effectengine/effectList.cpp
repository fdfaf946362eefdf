// Facts from the host library, in the words of the project's own code.
#include "effectengine/effectList.h"

#include "EffectEngine/EffectEngineHost.h"
#include "effectengine/Look.h"
#include "facts/catalogueJson.h"

#include <json/reader.h>

#include <algorithm>
#include <deque>
#include <map>
#include <sstream>

namespace tool {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;

namespace {

struct Lists {
    std::vector<EffectInfo> effects;
    std::map<std::string, std::vector<const ParamInfo*>, std::less<>> parameters; ///< by GUID
    std::deque<ParamInfo> infos;
    std::deque<std::string> texts;
};

ParamInfo translated(const EffectHostParameter& given, Lists& lists)
{
    ParamInfo info{given.name, KEXSDK::ParamType(given.type), given.help};
    info.title = given.title;
    info.unit = given.unit;
    info.packFolder = given.packFolder;
    info.packExample = given.packExample;
    std::string choices;
    for (const EffectHostChoice& choice : std::span(given.choices, given.choiceCount))
        choices += (choices.empty() ? "" : ", ") + std::to_string(choice.value) + " " + choice.name;
    info.choices = lists.texts.emplace_back(std::move(choices)).c_str();
    info.low = given.low;
    info.high = given.high;
    info.elements = std::clamp(given.elements, 1u, ParamInfo::kMaxElements);
    info.declared = given.declared != 0;
    std::copy_n(given.values, std::min(given.elements, info.elements), info.value.begin());
    if (given.hostDefault)
        info.hostDefault = *given.hostDefault;
    return info;
}

EffectInfo translated(const EffectHostEffect& given)
{
    return {.guid = given.guid,
        .name = given.name,
        .title = given.title,
        .family = given.family,
        .summary = given.summary,
        .inputs = given.inputs,
        .random = given.random != 0,
        .shared = given.shared != 0,
        .needsGpu = given.needsGpu != 0,
        .history = {given.historyFrames},
        .alpha = KEXSDK::Alpha(given.alpha),
        .descriptor = given.descriptor};
}

Lists readLists()
{
    const EffectHostEffect* const* effects = nullptr;
    std::size_t count = 0;
    succeed(EffectHostGetEffects(&effects, &count));
    Lists lists;
    for (const EffectHostEffect* const effect : std::span(effects, count)) {
        lists.effects.push_back(translated(*effect));
        auto& parameters = lists.parameters[effect->guid];
        for (const EffectHostParameter& parameter : std::span(effect->parameters, effect->parameterCount))
            parameters.push_back(&lists.infos.emplace_back(translated(parameter, lists)));
    }
    return lists;
}

const Lists& lists()
{
    static const Lists all = readLists();
    return all;
}

} // namespace

const std::vector<EffectInfo>& listEffects() { return lists().effects; }

const EffectInfo& effectNamed(std::string_view word)
{
    const EffectHostEffect* found = nullptr;
    succeed(EffectHostFindEffect(std::string(word).c_str(), &found));
    return *std::ranges::find(listEffects(), std::string_view(found->guid), &EffectInfo::guid);
}

const std::vector<const ParamInfo*>& describeParameters(const EffectInfo& effect)
{
    return lists().parameters.at(effect.guid);
}

std::string catalogueEntry(const EffectInfo& effect)
{
    const char* text = nullptr;
    succeed(EffectHostGetCatalogue(effect.guid.c_str(), &text));
    return text;
}

Json::Value catalogueOf(std::span<const EffectInfo> effects)
{
    Json::Value entries(Json::arrayValue);
    for (const EffectInfo& effect : effects)
        std::istringstream(catalogueEntry(effect)) >> entries.append(Json::Value());
    return catalogue::allOf(std::move(entries));
}

} // namespace tool
