// Exported functions that answer questions about effects.
#include "host/factsExports.h"

#include "facts/catalogueJson.h"
#include "host/GraphDescription.h"
#include "host/effectList.h"
#include "host/library.h"
#include "text/jsonText.h"

#include <deque>
#include <map>
#include <mutex>
#include <vector>

namespace host {

namespace {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;

static_assert(int(KEXSDK::ParamType::integer) == EFFECTHOST_INTEGER
    && int(KEXSDK::ParamType::filePath) == EFFECTHOST_FILE);
static_assert(
    int(KEXSDK::Alpha::kept) == EFFECTHOST_ALPHA_KEPT && int(KEXSDK::Alpha::loose) == EFFECTHOST_ALPHA_LOOSE);
static_assert(KEXSDK::History::kFromStart == EFFECTHOST_FROM_START);

/// The list of effects in C's words. Everything stays where it was made.
class Facts {
public:
    explicit Facts(const std::vector<EffectInfo>& effects)
    {
        for (const EffectInfo& effect : effects)
            pointers_.push_back(byEffect_[&effect] = &all_.emplace_back(translated(effect)));
    }

    const std::vector<const EffectHostEffect*>& pointers() const { return pointers_; }
    const EffectHostEffect* of(const EffectInfo& effect) const { return byEffect_.at(&effect); }

private:
    EffectHostEffect translated(const EffectInfo& effect)
    {
        auto& parameters = parameters_.emplace_back();
        for (const ParamInfo* const param : describeParameters(effect.guid))
            parameters.push_back(translated(*param));
        return {effect.guid.c_str(), effect.name.c_str(), effect.title.c_str(), effect.family.c_str(),
            effect.summary.c_str(), effect.inputs, effect.history.frames, effect.random, effect.shared,
            effect.needsGpu, EffectHostAlpha(effect.alpha), uint32_t(parameters.size()), parameters.data(),
            effect.descriptor.c_str()};
    }

    EffectHostParameter translated(const ParamInfo& param)
    {
        auto& choices = choices_.emplace_back();
        for (const auto& [value, label] : choicesOf(param))
            choices.push_back({value, texts_.emplace_back(label).c_str()});
        return {param.name, texts_.emplace_back(titleOf(param)).c_str(), param.help, param.unit,
            EffectHostType(param.type), param.type == KEXSDK::ParamType::filePath ? 0 : param.elements,
            param.declared, param.value.data(), param.low, param.high,
            param.hostDefault ? &*param.hostDefault : nullptr, uint32_t(choices.size()), choices.data(),
            param.packFolder, param.packExample};
    }

    std::deque<EffectHostEffect> all_;
    std::deque<std::vector<EffectHostParameter>> parameters_;
    std::deque<std::vector<EffectHostChoice>> choices_;
    std::deque<std::string> texts_;
    std::vector<const EffectHostEffect*> pointers_;
    std::map<const EffectInfo*, const EffectHostEffect*> byEffect_;
};

std::mutex mutex;

/// Facts of the list in use, made when they are first asked for.
const Facts& facts()
{
    static std::map<const std::vector<EffectInfo>*, Facts> every; // by list
    requireOpen();
    const auto& effects = listEffects();
    const std::lock_guard lock(mutex);
    return every.try_emplace(&effects, effects).first->second;
}

const std::string& catalogueOf(const EffectInfo* effect)
{
    static std::map<std::pair<const void*, const EffectInfo*>, std::string> every;
    const auto& effects = listEffects();
    const std::lock_guard lock(mutex);
    std::string& json = every[{&effects, effect}];
    if (!json.empty())
        return json;
    const auto entry = [](const EffectInfo& e) { return catalogue::entryOf(e, describeParameters(e.guid)); };
    if (effect)
        return json = text::jsonText(entry(*effect));
    Json::Value entries(Json::arrayValue);
    for (const EffectInfo& one : effects)
        entries.append(entry(one));
    return json = text::jsonText(catalogue::allOf(std::move(entries)));
}

} // namespace

const EffectHostEffect* factsOf(const EffectInfo& effect) { return facts().of(effect); }

} // namespace host

EffectHostResult EffectHostGetEffects(const EffectHostEffect* const** effects, size_t* count)
{
    return host::guarded([&] {
        host::require(effects && count, "EffectHostGetEffects got a null pointer");
        const auto& all = host::facts().pointers();
        *effects = all.data();
        *count = all.size();
    });
}

EffectHostResult EffectHostFindEffect(const char* word, const EffectHostEffect** effect)
{
    return host::guarded([&] {
        host::require(word && effect, "EffectHostFindEffect got a null pointer");
        host::requireOpen();
        *effect = host::factsOf(host::effectNamed(word));
    });
}

EffectHostResult EffectHostGetCatalogue(const char* effect, const char** json)
{
    return host::guarded([&] {
        host::require(json, "EffectHostGetCatalogue got a null pointer");
        host::requireOpen();
        *json = host::catalogueOf(effect ? &host::effectNamed(effect) : nullptr).c_str();
    });
}
