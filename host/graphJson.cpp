// Reading and writing of graphs as JSON. Unknown members are errors, so that misspelt ones are noticed.
#include "host/GraphDescription.h"
#include "host/GraphError.h"
#include "host/jsonText.h"
#include "host/nearest.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <memory>
#include <sstream>

namespace fs = std::filesystem;

namespace host {

namespace {

constexpr int kVersion = 1;
constexpr std::array<std::pair<const char*, Interpolation>, 3> kInterpolations{
    {{"linear", Interpolation::linear}, {"hold", Interpolation::hold}, {"smooth", Interpolation::smooth}}};
constexpr std::array<std::pair<const char*, TimeUnit>, 3> kUnits{
    {{"time", TimeUnit::seconds}, {"frame", TimeUnit::frames}, {"percent", TimeUnit::percent}}};

[[noreturn]] void fail(const std::string& message) { throw GraphError(GraphFault::content, message); }

// Runs a piece of the work, and puts the place in front of the text of its errors.
template <class Work> auto within(const std::string& place, Work work)
{
    try {
        return work();
    } catch (const GraphError& error) {
        throw GraphError(error.fault(), place + ": " + error.what());
    }
}

void allowMembers(const Json::Value& object, const std::vector<std::string_view>& allowed)
{
    for (const std::string& name : object.getMemberNames()) {
        if (std::ranges::find(allowed, name) == allowed.end())
            fail("there is no member \"" + name + "\" here" + didYouMean(allowed, name));
    }
}

std::string stringMember(const Json::Value& object, const char* name)
{
    const Json::Value& value = object[name];
    if (value.isNull())
        return {};
    if (!value.isString())
        fail(std::string("\"") + name + "\" must be a string");
    return value.asString();
}

double numberOf(const Json::Value& value, const char* name)
{
    if (!value.isNumeric() || !std::isfinite(value.asDouble()))
        fail(std::string("\"") + name + "\" must be a number");
    return value.asDouble();
}

std::string shortText(const Json::Value& value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["useSpecialFloats"] = true;
    constexpr std::size_t kMost = 40;
    const std::string text = Json::writeString(builder, value);
    return text.size() > kMost ? text.substr(0, kMost) + "..." : text;
}

ParameterValue readValue(const KEXSDK::ParamInfo& info, const Json::Value& value, const fs::path& directory)
{
    const auto refuse = [&] {
        fail("parameter " + std::string(info.name) + " takes " + expectedValue(info) + ", not "
            + shortText(value));
    };
    if (info.type == KEXSDK::ParamType::filePath) {
        if (!value.isString() || value.asString().empty())
            refuse();
        return (directory / value.asString()).lexically_normal().string();
    }
    if (value.isString()) {
        for (const auto& [number, label] : choicesOf(info)) {
            if (label == value.asString())
                return std::vector<double>{double(number)};
        }
        refuse();
    }
    std::vector<double> numbers;
    const auto take = [&](const Json::Value& one) {
        if (!one.isNumeric())
            refuse();
        numbers.push_back(one.asDouble());
    };
    if (value.isArray())
        std::ranges::for_each(value, take);
    else
        take(value);
    return numbers;
}

Keyframe readKeyframe(
    const KEXSDK::ParamInfo& info, const Json::Value& json, const char* unitName, const fs::path& directory)
{
    if (!json.isObject())
        fail("a keyframe must be an object");
    allowMembers(json, {unitName, "value", "interpolation"});
    if (!json.isMember(unitName) || !json.isMember("value"))
        fail(std::string("a keyframe needs \"") + unitName + "\" and \"value\"");
    Keyframe keyframe{numberOf(json[unitName], unitName), readValue(info, json["value"], directory)};
    const std::string name = stringMember(json, "interpolation");
    const auto found = std::ranges::find(kInterpolations, name, [](auto& i) { return std::string(i.first); });
    if (found != kInterpolations.end())
        keyframe.interpolation = found->second;
    else if (!name.empty())
        fail("\"interpolation\" must be linear, hold or smooth, not \"" + name + "\"");
    else if (info.type == KEXSDK::ParamType::filePath)
        keyframe.interpolation = Interpolation::hold;
    return keyframe;
}

ParameterTrack readTrack(const KEXSDK::ParamInfo& info, const Json::Value& json, const fs::path& directory)
{
    if (!json.isObject())
        return {info, readValue(info, json, directory)};
    return within("parameter " + std::string(info.name), [&]() -> ParameterTrack {
        allowMembers(json, {"keyframes"});
        const Json::Value& list = json["keyframes"];
        if (!list.isArray() || list.empty())
            fail("\"keyframes\" must be a list");
        // The first keyframe chooses the unit of all keyframes' times.
        const auto unit = std::ranges::find_if(
            kUnits, [&](auto& u) { return list[0].isObject() && list[0].isMember(u.first); });
        if (unit == kUnits.end())
            fail("a keyframe needs \"time\", \"frame\" or \"percent\", and \"value\"");
        std::vector<Keyframe> keyframes;
        for (const Json::Value& one : list)
            keyframes.push_back(readKeyframe(info, one, unit->first, directory));
        return {info, unit->second, std::move(keyframes)};
    });
}

NodeWindow readWindow(const Json::Value& json)
{
    const auto member = [&](const char* name) {
        return json.isMember(name) ? numberOf(json[name], name) : 0;
    };
    const NodeWindow window{member("start"), member("duration")};
    if (!(window.duration > 0))
        fail("\"start\" goes with a \"duration\" above 0");
    return window;
}

std::vector<std::string> readInputs(const Json::Value& json)
{
    if (!json.isArray())
        fail("\"inputs\" must be a list of node ids");
    std::vector<std::string> inputs;
    for (const Json::Value& input : json) {
        if (!input.isString())
            fail("\"inputs\" must be a list of node ids");
        inputs.push_back(input.asString());
    }
    return inputs;
}

void readNode(GraphDescription& graph, const Json::Value& json, const fs::path& directory)
{
    if (!json.isObject())
        fail("a node must be an object");
    allowMembers(json, {"id", "effect", "inputs", "parameters", "start", "duration"});
    const std::string effect = stringMember(json, "effect");
    if (effect.empty())
        fail("a node needs an \"effect\"");
    GraphNode& node = graph.append(effect, stringMember(json, "id"));
    // Only the first input has a default, the source; the file must name what feeds the others.
    node.inputs.resize(std::min<std::size_t>(node.inputs.size(), 1));
    if (json.isMember("inputs"))
        node.inputs = readInputs(json["inputs"]);
    if (json.isMember("start") || json.isMember("duration"))
        node.window = readWindow(json);
    const Json::Value& parameters = json["parameters"];
    if (!parameters.isNull() && !parameters.isObject())
        fail("\"parameters\" must be an object");
    for (const std::string& name : parameters.getMemberNames()) {
        const KEXSDK::ParamInfo& info = parameterNamed(*node.effect, name);
        if (node.sets(info))
            fail("parameter " + std::string(info.name) + " is set twice, once as \"" + name + '"');
        node.parameters.push_back(readTrack(info, parameters[name], directory));
    }
}

GraphDescription readGraph(const Json::Value& json, const fs::path& directory)
{
    if (!json.isObject())
        fail("the file must hold an object");
    allowMembers(json, {"effectengine", "title", "nodes", "output"});
    if (!json["effectengine"].isInt() || json["effectengine"].asInt() != kVersion)
        fail("\"effectengine\" must be " + std::to_string(kVersion) + ", the version of the format");
    GraphDescription graph;
    graph.title = stringMember(json, "title");
    const Json::Value& nodes = json["nodes"];
    if (!nodes.isArray() || nodes.empty())
        fail("\"nodes\" must be a list with at least one node");
    for (Json::ArrayIndex i = 0; i < nodes.size(); ++i) {
        const Json::Value& node = nodes[i];
        const bool named = node.isObject() && node["id"].isString();
        within("node " + (named ? "\"" + node["id"].asString() + "\"" : std::to_string(i + 1)),
            [&] { readNode(graph, node, directory); });
    }
    if (const std::string output = stringMember(json, "output"); !output.empty())
        graph.output = output;
    graph.finish();
    return graph;
}

Json::Value parseJson(const std::string& text, const std::string& name)
{
    Json::CharReaderBuilder builder;
    builder["failIfExtra"] = true;
    builder["rejectDupKeys"] = true;
    builder["allowSpecialFloats"] = true; // so that NaN is refused by the name of its parameter
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    bool read = false;
    try {
        read = reader->parse(text.data(), text.data() + text.size(), &value, &errors);
    } catch (const Json::Exception& error) { // nested too deep
        errors = error.what();
    }
    if (!read) {
        // "* Line 2, Column 5\n  Missing ',' ...\n": one line of it is enough.
        std::istringstream lines(errors);
        std::string place;
        std::string what;
        std::getline(lines, place);
        std::getline(lines, what);
        const auto trimmed = [](const std::string& s) {
            const std::size_t first = s.find_first_not_of("* ");
            return first == std::string::npos ? std::string() : s.substr(first);
        };
        throw GraphError(
            GraphFault::unreadable, name + ": not valid JSON: " + trimmed(place) + " " + trimmed(what));
    }
    return value;
}

Json::Value valueJson(const ParameterTrack& track, const ParameterValue& value)
{
    if (const auto* const path = std::get_if<std::string>(&value))
        return fs::absolute(*path).lexically_normal().string();
    const auto& numbers = std::get<std::vector<double>>(value);
    const auto type = track.info().type;
    const bool whole = type == KEXSDK::ParamType::integer || type == KEXSDK::ParamType::integerArray;
    const auto one = [&](double n) { return whole ? Json::Value(int(n)) : Json::Value(n); };
    if (type == KEXSDK::ParamType::integer || type == KEXSDK::ParamType::real)
        return one(numbers.front());
    Json::Value list(Json::arrayValue);
    for (const double number : numbers)
        list.append(one(number));
    return list;
}

template <class Table, class Value> const char* nameIn(const Table& table, Value value)
{
    return std::ranges::find(table, value, [](auto& row) { return row.second; })->first;
}

Json::Value trackJson(const ParameterTrack& track)
{
    if (track.constant())
        return valueJson(track, track.keyframes().front().value);
    Json::Value json;
    for (const Keyframe& keyframe : track.keyframes()) {
        Json::Value one;
        one[nameIn(kUnits, track.unit())] = keyframe.time;
        one["value"] = valueJson(track, keyframe.value);
        one["interpolation"] = nameIn(kInterpolations, keyframe.interpolation);
        json["keyframes"].append(one);
    }
    return json;
}

} // namespace

GraphDescription parseGraph(const std::string& text, const std::string& name, const fs::path& directory)
{
    const Json::Value json = parseJson(text, name);
    return within(name, [&] { return readGraph(json, directory); });
}

GraphDescription loadGraph(const fs::path& file)
{
    std::error_code error;
    if (!fs::exists(file, error))
        throw GraphError(GraphFault::missingFile, "no such file: " + file.string());
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (fs::is_directory(file, error) || !stream || !(text << stream.rdbuf()))
        throw GraphError(GraphFault::unreadable, "cannot read " + file.string());
    return parseGraph(text.str(), file.string(), file.parent_path());
}

std::string graphText(const GraphDescription& graph)
{
    Json::Value json;
    json["effectengine"] = kVersion;
    if (!graph.title.empty())
        json["title"] = graph.title;
    json["output"] = graph.output;
    for (const GraphNode& node : graph.nodes) {
        Json::Value one;
        one["id"] = node.id;
        one["effect"] = node.effect->name;
        for (const std::string& input : node.inputs)
            one["inputs"].append(input);
        for (const ParameterTrack& track : node.parameters)
            one["parameters"][track.info().name] = trackJson(track);
        if (node.window) {
            one["start"] = node.window->start;
            one["duration"] = node.window->duration;
        }
        json["nodes"].append(one);
    }
    return jsonText(json);
}

} // namespace host
