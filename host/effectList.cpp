// Reading of effects.json, and the lists that it gives.
#include "host/effectList.h"

#include "descriptors/descriptorList.h"
#include "facts/effectOrder.h"
#include "host/GraphError.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <algorithm>
#include <array>
#include <deque>
#include <fstream>
#include <map>
#include <mutex>

namespace host {

namespace {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;
using rapidjson::Value;

struct EffectList {
    std::string text; ///< of the catalogue; parameters point into it
    std::vector<EffectInfo> effects;
    std::map<std::string, std::vector<const ParamInfo*>, std::less<>> parameters; ///< by GUID
    std::deque<ParamInfo> catalogued;
    std::deque<std::string> texts;
    shader::DescriptorList descriptors;
};

template <class Enum> struct Word {
    const char* word;
    Enum value;
};
constexpr std::array<Word<KEXSDK::ParamType>, 5> kTypes{{{"integer", KEXSDK::ParamType::integer},
    {"float", KEXSDK::ParamType::real}, {"integers", KEXSDK::ParamType::integerArray},
    {"floats", KEXSDK::ParamType::realArray}, {"file", KEXSDK::ParamType::filePath}}};
constexpr std::array<Word<KEXSDK::Alpha>, 4> kAlphas{
    {{"kept", KEXSDK::Alpha::kept}, {"opaque", KEXSDK::Alpha::opaque}, {"computed", KEXSDK::Alpha::computed},
        {"loose", KEXSDK::Alpha::loose}}};

/// Thrown inside this file for contents that a catalogue does not have.
struct NoCatalogue {
    std::string why;
};

const Value& member(const Value& object, const char* name)
{
    if (object.IsObject()) {
        const auto found = object.FindMember(name);
        if (found != object.MemberEnd())
            return found->value;
    }
    throw NoCatalogue{std::string("there is no \"") + name + '"'};
}

const char* text(const Value& object, const char* name)
{
    const Value& value = member(object, name);
    if (!value.IsString())
        throw NoCatalogue{std::string("\"") + name + "\" is no text"};
    return value.GetString();
}

double number(const Value& value)
{
    if (!value.IsNumber())
        throw NoCatalogue{"a value is no number"};
    return value.GetDouble();
}

bool flag(const Value& object, const char* name)
{
    const Value& value = member(object, name);
    if (!value.IsBool())
        throw NoCatalogue{std::string("\"") + name + "\" is neither true nor false"};
    return value.GetBool();
}

template <class Enum, std::size_t n>
Enum choice(const Value& object, const char* name, const std::array<Word<Enum>, n>& words)
{
    const std::string_view given = text(object, name);
    const auto found =
        std::ranges::find(words, given, [](const Word<Enum>& w) { return std::string_view(w.word); });
    if (found == words.end())
        throw NoCatalogue{std::string("\"") + name + "\" is \"" + std::string(given) + '"'};
    return found->value;
}

const Value* optional(const Value& object, const char* name)
{
    const auto found = object.FindMember(name);
    return found == object.MemberEnd() || found->value.IsNull() ? nullptr : &found->value;
}

/// A float of the engine, so that 0.1 is its 0.1f.
double asStored(const ParamInfo& param, double value)
{
    const bool real = param.type == KEXSDK::ParamType::real || param.type == KEXSDK::ParamType::realArray;
    return real ? double(float(value)) : value;
}

std::string choicesText(const Value& values)
{
    std::string all;
    for (const Value& one : values.GetArray())
        all += (all.empty() ? "" : ", ") + std::to_string(int(number(member(one, "value")))) + " "
            + text(one, "name");
    return all;
}

ParamInfo readParameter(const Value& json, EffectList& list)
{
    ParamInfo param{text(json, "name"), choice(json, "type", kTypes), text(json, "help")};
    param.title = text(json, "title");
    param.unit = text(json, "unit");
    if (optional(json, "folder")) {
        param.packFolder = text(json, "folder");
        param.packExample = text(json, "example");
        param.declared = false;
        return param;
    }
    const Value* given = optional(json, "default");
    param.declared = given != nullptr;
    if (!given)
        given = optional(json, "example");
    if (given && given->IsArray()) {
        param.elements = std::min(u32(given->Size()), ParamInfo::kMaxElements);
        for (u32 i = 0; i < param.elements; ++i)
            param.value[i] = asStored(param, number((*given)[i]));
    } else if (given) {
        param.value[0] = asStored(param, number(*given));
    }
    if (const Value* const range = optional(json, "advised");
        range && range->IsArray() && range->Size() == 2) {
        param.low = asStored(param, number((*range)[0]));
        param.high = asStored(param, number((*range)[1]));
    }
    if (const Value* const value = optional(json, "hostDefault"))
        param.hostDefault = asStored(param, number(*value));
    if (const Value* const values = optional(json, "values"); values && values->IsArray())
        param.choices = list.texts.emplace_back(choicesText(*values)).c_str();
    return param;
}

KEXSDK::History readHistory(const Value& json)
{
    const std::string_view word = text(json, "history");
    if (word == "from-start")
        return {KEXSDK::History::kFromStart};
    return {word == "frames" ? int(number(member(json, "historyFrames"))) : 0};
}

EffectInfo readEffect(const Value& json)
{
    EffectInfo effect;
    effect.guid = text(json, "guid");
    effect.name = text(json, "name");
    effect.title = text(json, "title");
    effect.family = text(json, "family");
    effect.summary = text(json, "summary");
    effect.inputs = u32(number(member(json, "inputs")));
    effect.random = flag(json, "random");
    effect.shared = flag(json, "shared");
    effect.needsGpu = flag(json, "needsGpu");
    effect.history = readHistory(json);
    effect.alpha = choice(json, "alpha", kAlphas);
    effect.writesInput = text(json, "writesInput");
    effect.keepsOutput = flag(json, "keepsOutput");
    effect.byRows = flag(json, "byRows");
    return effect;
}

void readEffects(EffectList& list)
{
    rapidjson::Document json;
    json.ParseInsitu(list.text.data());
    if (json.HasParseError())
        throw NoCatalogue{rapidjson::GetParseError_En(json.GetParseError())};
    const Value& effects = member(json, "effects");
    if (!effects.IsArray())
        throw NoCatalogue{"\"effects\" is no list"};
    for (const Value& one : effects.GetArray()) {
        EffectInfo effect = readEffect(one);
        if (optional(one, "descriptor") || list.descriptors.contains(effect.guid))
            continue;
        auto& parameters = list.parameters[effect.guid];
        const Value& described = member(one, "parameters");
        if (!described.IsArray())
            throw NoCatalogue{"\"parameters\" is no list"};
        for (const Value& parameter : described.GetArray())
            parameters.push_back(&list.catalogued.emplace_back(readParameter(parameter, list)));
        list.effects.push_back(std::move(effect));
    }
}

void addDescriptors(EffectList& list)
{
    for (const auto& [guid, descriptor] : list.descriptors) {
        list.effects.push_back(descriptor.facts);
        list.parameters[guid] = shader::describedParameters(*descriptor.descriptor);
    }
}

std::mutex mutex;
std::deque<EffectList> lists; ///< the last one is in use

const EffectList& current()
{
    static const EffectList none;
    const std::lock_guard lock(mutex);
    return lists.empty() ? none : lists.back();
}

} // namespace

void readCatalogue(const std::filesystem::path& catalogue, const std::string& resourceDirectory)
{
    std::ifstream stream(catalogue, std::ios::binary);
    if (!stream || !std::filesystem::is_regular_file(catalogue))
        throw GraphError(GraphFault::missingFile, "no catalogue of effects: " + catalogue.string());
    EffectList list;
    if (!resourceDirectory.empty())
        list.descriptors = shader::listDescriptors(resourceDirectory);
    std::error_code error;
    list.text.resize(std::size_t(std::filesystem::file_size(catalogue, error)));
    stream.read(list.text.data(), std::streamsize(list.text.size()));
    const std::lock_guard lock(mutex);
    EffectList& kept = lists.emplace_back(std::move(list)); // first in its place: parameters point into it
    try {
        readEffects(kept);
    } catch (const NoCatalogue& fault) {
        lists.pop_back();
        throw GraphError(
            GraphFault::unreadable, catalogue.string() + " is no catalogue of effects: " + fault.why);
    }
    addDescriptors(kept);
    putInOrder(kept.effects);
}

const std::vector<EffectInfo>& listEffects() { return current().effects; }

const EffectInfo* findEffect(std::string_view guidOrName)
{
    const auto& all = listEffects();
    const auto found = std::ranges::find_if(
        all, [&](const EffectInfo& e) { return e.guid == guidOrName || e.name == guidOrName; });
    return found == all.end() ? nullptr : &*found;
}

const std::vector<const ParamInfo*>& describeParameters(const std::string& guid)
{
    static const std::vector<const ParamInfo*> none;
    const EffectList& list = current();
    const auto found = list.parameters.find(guid);
    return found == list.parameters.end() ? none : found->second;
}

} // namespace host
