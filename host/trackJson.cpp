// Keyframes, repetition, components and sound, from and to JSON.
#include "host/trackJson.h"

#include "text/nearest.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace fs = std::filesystem;
using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

namespace host {

namespace {

constexpr std::array<std::pair<const char*, TimeUnit>, 3> kUnits{
    {{"time", TimeUnit::seconds}, {"frame", TimeUnit::frames}, {"percent", TimeUnit::percent}}};
constexpr std::array<std::pair<const char*, Repeat::Kind>, 3> kRepeats{
    {{"none", Repeat::Kind::none}, {"loop", Repeat::Kind::loop}, {"ping-pong", Repeat::Kind::pingPong}}};

ParameterValue readValue(const ParamInfo& info, const Json::Value& value, const GraphFile& file)
{
    const auto refuse = [&] {
        fail("parameter " + std::string(info.name) + " takes " + expectedValue(info) + ", not "
            + shortText(value));
    };
    if (info.type == ParamType::filePath) {
        if (!value.isString() || value.asString().empty())
            refuse();
        const fs::path path = file.directory / value.asString();
        if (mayBeInPack(info, value.asString()) && !fs::exists(path))
            return value.asString();
        return path.lexically_normal().string();
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

// As many finite numbers as wanted, or none.
std::vector<double> numbersOf(const Json::Value& list, Json::ArrayIndex count)
{
    std::vector<double> numbers;
    if (!list.isArray() || list.size() != count)
        return {};
    for (const Json::Value& one : list) {
        if (!one.isNumeric() || !std::isfinite(one.asDouble()))
            return {};
        numbers.push_back(one.asDouble());
    }
    return numbers;
}

Easing readCurve(const Json::Value& json, const GraphFile& file)
{
    allowMembers(file, json, {}, {"bezier"});
    const std::vector<double> numbers = numbersOf(json["bezier"], 4);
    if (numbers.empty())
        fail("\"bezier\" must be a list of four numbers: x1, y1, x2, y2");
    return Easing::bezier({numbers[0], numbers[1], numbers[2], numbers[3]});
}

Easing readEasing(const Json::Value& json, const GraphFile& file)
{
    if (json.isObject())
        return readCurve(json, file);
    const bool newer = file.version > 1;
    if (!json.isString())
        fail(newer ? "\"interpolation\" must be a name, or {\"bezier\": [x1, y1, x2, y2]}"
                   : "\"interpolation\" must be a string");
    const std::string name = json.asString();
    if (const auto easing = Easing::named(name)) {
        if (easing->since() > 1)
            needVersion2(file, "interpolation \"" + name + '"');
        return *easing;
    }
    std::vector<std::string_view> known;
    for (const NamedEasing& easing : namedEasings()) {
        if (easing.since <= file.version)
            known.push_back(easing.name);
    }
    fail("there is no interpolation \"" + name + '"' + text::didYouMean(known, name));
}

Keyframe readKeyframe(
    const ParamInfo& info, const Json::Value& json, const char* unitName, const GraphFile& file)
{
    if (!json.isObject())
        fail("a keyframe must be an object");
    allowMembers(file, json, {unitName, "value", "interpolation"});
    if (!json.isMember(unitName) || !json.isMember("value"))
        fail(std::string("a keyframe needs \"") + unitName + "\" and \"value\"");
    Keyframe keyframe{numberOf(json[unitName], unitName), readValue(info, json["value"], file), {}};
    const Json::Value& easing = json["interpolation"];
    const bool unnamed = easing.isNull() || (easing.isString() && easing.asString().empty());
    if (!unnamed)
        keyframe.interpolation = readEasing(easing, file);
    else if (info.type == ParamType::filePath)
        keyframe.interpolation = Easing::hold();
    return keyframe;
}

Repeat readRepeat(const Json::Value& json)
{
    Repeat repeat;
    if (const std::string name = stringMember(json, "repeat"); json.isMember("repeat")) {
        const auto found = std::ranges::find(kRepeats, name, [](auto& r) { return std::string(r.first); });
        if (found == kRepeats.end())
            fail("\"repeat\" must be none, loop or ping-pong, not \"" + name + '"');
        repeat.kind = found->second;
    }
    if (json.isMember("times")) {
        if (!json["times"].isInt() || json["times"].asInt() < 1)
            fail("\"times\" must be a whole number from 1, not " + shortText(json["times"]));
        repeat.times = json["times"].asInt();
    }
    return repeat;
}

Keyframes readKeyframes(const ParamInfo& info, const Json::Value& json, const GraphFile& file)
{
    allowMembers(file, json, {"keyframes"}, {"repeat", "times"});
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
        keyframes.push_back(readKeyframe(info, one, unit->first, file));
    return {unit->second, std::move(keyframes), readRepeat(json)};
}

SoundBand readBand(const Json::Value& json)
{
    std::vector<std::string_view> names;
    for (const NamedBand& band : namedBands()) {
        if (json.isString() && json.asString() == band.name)
            return band.band;
        names.emplace_back(band.name);
    }
    if (json.isString())
        fail("there is no band \"" + json.asString() + '"' + text::didYouMean(names, json.asString()));
    const std::vector<double> hertz = numbersOf(json, 2);
    if (hertz.empty() || hertz[0] < 0 || !(hertz[0] < hertz[1]))
        fail("\"band\" must be a name or two frequencies in hertz, the lower one first");
    return {hertz[0], hertz[1]};
}

SoundResponse readSound(const ParamInfo& info, const Json::Value& json, const GraphFile& file)
{
    if (!json.isObject())
        fail("\"audio\" must be an object");
    allowMembers(file, json, {"band", "to", "smooth"});
    const Json::Value& ends = json["to"];
    if (!json.isMember("band") || !ends.isArray() || ends.size() != 2)
        fail("\"audio\" needs a \"band\", and \"to\": the value in silence and the value at the loudest");
    const double release = json.isMember("smooth") ? numberOf(json["smooth"], "smooth") : 0;
    if (release < 0)
        fail("\"smooth\" must be a number of seconds from 0");
    return {readBand(json["band"]), readValue(info, ends[0], file), readValue(info, ends[1], file), release};
}

// What a parameter, or a component of one, is given.
Movement readMovement(const ParamInfo& info, const Json::Value& json, const GraphFile& file)
{
    if (!json.isObject())
        return readValue(info, json, file);
    if (json.isMember("audio")) {
        allowMembers(file, json, {}, {"audio"});
        return readSound(info, json["audio"], file);
    }
    return readKeyframes(info, json, file);
}

std::vector<Movement> readComponents(const ParamInfo& info, const Json::Value& json, const GraphFile& file)
{
    allowMembers(file, json, {}, {"components"});
    if (!json["components"].isArray())
        fail("\"components\" must be a list");
    const ParamInfo element = elementOf(info);
    std::vector<Movement> components;
    for (const Json::Value& one : json["components"]) {
        within("component " + std::to_string(components.size() + 1),
            [&] { components.push_back(readMovement(element, one, file)); });
    }
    return components;
}

Json::Value valueJson(const ParamInfo& info, const ParameterValue& value)
{
    if (const auto* const path = std::get_if<std::string>(&value)) {
        if (mayBeInPack(info, *path) && !fs::exists(*path))
            return *path;
        return fs::absolute(*path).lexically_normal().string();
    }
    const auto& numbers = std::get<std::vector<double>>(value);
    const bool whole = info.type == ParamType::integer || info.type == ParamType::integerArray;
    const auto one = [&](double n) { return whole ? Json::Value(int(n)) : Json::Value(n); };
    if (!isArray(info))
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

Json::Value easingJson(const Easing& easing)
{
    if (easing.name())
        return easing.name()->name;
    Json::Value json;
    for (const double number : easing.points())
        json["bezier"].append(number);
    return json;
}

Json::Value keyframesJson(const ParamInfo& info, const Keyframes& keyframes)
{
    Json::Value json;
    for (const Keyframe& keyframe : keyframes.list()) {
        Json::Value one;
        one[nameIn(kUnits, keyframes.unit())] = keyframe.time;
        one["value"] = valueJson(info, keyframe.value);
        one["interpolation"] = easingJson(keyframe.interpolation);
        json["keyframes"].append(one);
    }
    if (const Repeat& repeat = keyframes.repeat(); repeat.kind != Repeat::Kind::none) {
        json["repeat"] = nameIn(kRepeats, repeat.kind);
        if (repeat.times)
            json["times"] = *repeat.times;
    }
    return json;
}

Json::Value soundJson(const ParamInfo& info, const SoundResponse& response)
{
    Json::Value json;
    Json::Value& audio = json["audio"];
    const auto named = std::ranges::find(namedBands(), response.band, &NamedBand::band);
    if (named != namedBands().end()) {
        audio["band"] = named->name;
    } else {
        audio["band"].append(response.band.low);
        audio["band"].append(response.band.high);
    }
    audio["to"].append(valueJson(info, response.quiet));
    audio["to"].append(valueJson(info, response.loud));
    if (response.release > 0)
        audio["smooth"] = response.release;
    return json;
}

Json::Value movementJson(const ParamInfo& info, const Movement& movement)
{
    if (const auto* const keyframes = std::get_if<Keyframes>(&movement))
        return keyframesJson(info, *keyframes);
    if (const auto* const response = std::get_if<SoundResponse>(&movement))
        return soundJson(info, *response);
    return valueJson(info, std::get<ParameterValue>(movement));
}

} // namespace

ParameterTrack readTrack(const ParamInfo& info, const Json::Value& json, const GraphFile& file)
{
    if (!json.isObject())
        return {info, readValue(info, json, file)};
    return within("parameter " + std::string(info.name), [&]() -> ParameterTrack {
        if (json.isMember("components"))
            return {info, readComponents(info, json, file)};
        return std::visit([&](auto movement) { return ParameterTrack(info, std::move(movement)); },
            readMovement(info, json, file));
    });
}

Json::Value trackJson(const ParameterTrack& track)
{
    if (!track.byComponent())
        return movementJson(track.info(), track.movements().front());
    const ParamInfo element = elementOf(track.info());
    Json::Value json;
    json["components"] = Json::arrayValue;
    for (const Movement& movement : track.movements())
        json["components"].append(movementJson(element, movement));
    return json;
}

} // namespace host
