// Reading and writing of graphs as JSON. Unknown members are errors, so that misspelt ones are noticed.
#include "host/GraphDescription.h"
#include "host/graphMembers.h"
#include "host/trackJson.h"
#include "text/jsonText.h"

#include <json/json.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>

namespace fs = std::filesystem;

namespace host {

namespace {

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

bool flagMember(const Json::Value& object, const char* name)
{
    const Json::Value& value = object[name];
    if (!value.isNull() && !value.isBool())
        fail(std::string("\"") + name + "\" must be true or false");
    return !value.isNull() && value.asBool();
}

NodeMask readMask(const Json::Value& json, const GraphFile& file)
{
    const auto absolute = [&](const std::string& path) {
        return path.empty() ? path : (file.directory / path).lexically_normal().string();
    };
    if (json.isString())
        return {.picture = absolute(json.asString()), .node = {}};
    if (!json.isObject())
        fail("\"mask\" must be a file or an object");
    allowMembers(file, json, {"picture", "node", "invert", "feather"});
    return {.picture = absolute(stringMember(json, "picture")),
        .node = stringMember(json, "node"),
        .invert = flagMember(json, "invert"),
        .feather = json.isMember("feather") ? numberOf(json["feather"], "feather") : 0};
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

void readNode(GraphDescription& graph, const Json::Value& json, const GraphFile& file)
{
    if (!json.isObject())
        fail("a node must be an object");
    allowMembers(file, json, {"id", "effect", "inputs", "parameters", "start", "duration"}, {"mix", "mask"});
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
    if (json.isMember("mix"))
        node.mix = readTrack(kMix, json["mix"], file);
    if (json.isMember("mask"))
        node.mask = readMask(json["mask"], file);
    const Json::Value& parameters = json["parameters"];
    if (!parameters.isNull() && !parameters.isObject())
        fail("\"parameters\" must be an object");
    for (const std::string& name : parameters.getMemberNames()) {
        const KEXSDK::ParamInfo& info = parameterNamed(*node.effect, name);
        if (node.sets(info))
            fail("parameter " + std::string(info.name) + " is set twice, once as \"" + name + '"');
        node.parameters.push_back(readTrack(info, parameters[name], file));
    }
}

GraphDescription readGraph(const Json::Value& json, const fs::path& directory)
{
    if (!json.isObject())
        fail("the file must hold an object");
    const Json::Value& version = json["effectengine"];
    if (!version.isInt() || version.asInt() < 1 || version.asInt() > kNewestGraphVersion)
        fail("\"effectengine\" must be 1 or 2, the version of the format");
    const GraphFile file{directory, version.asInt()};
    allowMembers(file, json, {"$schema", "effectengine", "title", "nodes", "output"});
    stringMember(json, "$schema");
    GraphDescription graph;
    graph.title = stringMember(json, "title");
    const Json::Value& nodes = json["nodes"];
    if (!nodes.isArray() || nodes.empty())
        fail("\"nodes\" must be a list with at least one node");
    for (Json::ArrayIndex i = 0; i < nodes.size(); ++i) {
        const Json::Value& node = nodes[i];
        const bool named = node.isObject() && node["id"].isString();
        within("node " + (named ? "\"" + node["id"].asString() + "\"" : std::to_string(i + 1)),
            [&] { readNode(graph, node, file); });
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

// Whether a node has something that version 1 of the format cannot say.
bool needsVersion2(const GraphNode& node)
{
    return node.mix || node.mask
        || std::ranges::any_of(node.parameters, [](const ParameterTrack& t) { return t.since() > 1; });
}

Json::Value maskJson(const NodeMask& mask)
{
    Json::Value json;
    if (mask.picture.empty())
        json["node"] = mask.node;
    else
        json["picture"] = fs::absolute(mask.picture).lexically_normal().string();
    if (mask.invert)
        json["invert"] = true;
    if (mask.feather != 0)
        json["feather"] = mask.feather;
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
    json["effectengine"] = std::ranges::any_of(graph.nodes, needsVersion2) ? 2 : 1;
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
        if (node.mix)
            one["mix"] = trackJson(*node.mix);
        if (node.mask)
            one["mask"] = maskJson(*node.mask);
        json["nodes"].append(one);
    }
    return text::jsonText(json);
}

} // namespace host
