// Graph files of one node.
#include "effectengine/exampleLook.h"

#include "effectengine/effectList.h"
#include "hosting/exampleValues.h"
#include "text/jsonText.h"

namespace tool {

namespace {

/// The newest version of graph files, which has all that a node's parameters can say.
constexpr int kGraphVersion = 2;

Json::Value toJson(const KEXSDK::ParamInfo& param, const host::ParameterValue& value)
{
    if (const auto* const path = std::get_if<std::string>(&value))
        return *path;
    const auto& numbers = std::get<std::vector<double>>(value);
    if (param.type == KEXSDK::ParamType::integer || param.type == KEXSDK::ParamType::real)
        return numbers.front();
    Json::Value list(Json::arrayValue);
    for (const double number : numbers)
        list.append(number);
    return list;
}

} // namespace

Look exampleLook(const KEXSDK::EffectInfo& effect, unsigned width, unsigned height, Json::Value parameters)
{
    for (const KEXSDK::ParamInfo* const param : describeParameters(effect)) {
        if (!param->declared && !parameters.isMember(param->name))
            parameters[param->name] = toJson(*param, host::exampleValue(*param, width, height));
    }
    Json::Value node;
    node["effect"] = effect.guid;
    node["parameters"] = std::move(parameters);
    for (unsigned i = 0; i < effect.inputs; ++i)
        node["inputs"].append(i == 0 ? "source" : "source-2");
    Json::Value json;
    json["effectengine"] = kGraphVersion;
    json["nodes"].append(node);
    return Look::fromJson(text::jsonText(json));
}

} // namespace tool
