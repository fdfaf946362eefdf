// The members of effects and parameters.
#include "facts/catalogueJson.h"

#include "text/jsonText.h"

#include <limits>

using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

namespace catalogue {

namespace {

bool whole(const ParamInfo& param)
{
    return param.type == ParamType::integer || param.type == ParamType::integerArray;
}

Json::Value number(const ParamInfo& param, double value)
{
    return whole(param) ? Json::Value(int(value)) : Json::Value(text::shortest(float(value)));
}

Json::Value list(std::initializer_list<Json::Value> values)
{
    Json::Value json(Json::arrayValue);
    for (const Json::Value& value : values)
        json.append(value);
    return json;
}

Json::Value valueOf(const ParamInfo& param)
{
    if (param.elements == 1 && (param.type == ParamType::integer || param.type == ParamType::real))
        return number(param, param.value[0]);
    Json::Value json(Json::arrayValue);
    for (u32 i = 0; i < param.elements; ++i)
        json.append(number(param, param.value[i]));
    return json;
}

Json::Value parameterEntry(const ParamInfo& param)
{
    Json::Value json;
    json["name"] = param.name;
    json["title"] = titleOf(param);
    json["type"] = typeName(param.type);
    json["help"] = param.help;
    json["unit"] = param.unit;
    // Only what the node stores by itself is a default.
    json["default"] = Json::Value();
    if (*param.packFolder) {
        json["folder"] = param.packFolder;
        json["example"] = param.packExample;
    }
    if (param.type == ParamType::filePath)
        return json;
    json[param.declared ? "default" : "example"] = valueOf(param);
    if (param.hostDefault)
        json["hostDefault"] = number(param, *param.hostDefault);
    if (param.type == ParamType::integerArray || param.type == ParamType::realArray)
        json["elements"] = param.elements;
    if (param.low < param.high)
        json["advised"] = list({number(param, param.low), number(param, param.high)});
    // The store takes whatever its type can hold.
    if (whole(param))
        json["hard"] = list({std::numeric_limits<int>::min(), std::numeric_limits<int>::max()});
    else
        json["hard"] = list({text::shortest(std::numeric_limits<float>::lowest()),
            text::shortest(std::numeric_limits<float>::max())});
    for (const auto& [value, label] : KEXSDK::choicesOf(param)) {
        Json::Value choice;
        choice["value"] = value;
        choice["name"] = label;
        json["values"].append(choice);
    }
    return json;
}

const char* historyName(const KEXSDK::History& history)
{
    if (history.frames == KEXSDK::History::kFromStart)
        return "from-start";
    return history.frames == 0 ? "none" : "frames";
}

const char* alphaName(KEXSDK::Alpha alpha)
{
    switch (alpha) {
    case KEXSDK::Alpha::kept:
        return "kept";
    case KEXSDK::Alpha::opaque:
        return "opaque";
    case KEXSDK::Alpha::computed:
        return "computed";
    case KEXSDK::Alpha::loose:
        return "loose";
    }
    return "";
}

} // namespace

Json::Value entryOf(const KEXSDK::EffectInfo& effect, std::span<const ParamInfo* const> parameters)
{
    Json::Value json;
    json["guid"] = effect.guid;
    json["name"] = effect.name;
    json["title"] = effect.title;
    json["family"] = effect.family;
    json["summary"] = effect.summary;
    json["inputs"] = effect.inputs;
    json["random"] = effect.random;
    json["shared"] = effect.shared;
    json["needsGpu"] = effect.needsGpu;
    if (!effect.descriptor.empty())
        json["descriptor"] = effect.descriptor;
    json["history"] = historyName(effect.history);
    if (effect.history.frames > 0)
        json["historyFrames"] = effect.history.frames;
    json["alpha"] = alphaName(effect.alpha);
    json["writesInput"] = effect.writesInput;
    json["keepsOutput"] = effect.keepsOutput;
    json["byRows"] = effect.byRows;
    json["parameters"] = Json::Value(Json::arrayValue);
    for (const ParamInfo* const param : parameters)
        json["parameters"].append(parameterEntry(*param));
    return json;
}

Json::Value allOf(Json::Value entries)
{
    Json::Value json;
    json["effectengine"] = 1;
    json["effects"] = std::move(entries);
    return json;
}

const char* typeName(ParamType type)
{
    switch (type) {
    case ParamType::integer:
        return "integer";
    case ParamType::real:
        return "float";
    case ParamType::integerArray:
        return "integers";
    case ParamType::realArray:
        return "floats";
    case ParamType::filePath:
        return "file";
    }
    return "";
}

} // namespace catalogue
