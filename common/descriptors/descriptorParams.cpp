// Parameter metadata out of JSON.
#include "descriptors/descriptorParams.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace shader {

namespace {

using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

// Hosts enumerate names into buffers of their own.
constexpr std::size_t kLongestName = 63;
constexpr Json::ArrayIndex kMostParams = 256;

// Parameters that every shader effect has of its own: descriptors cannot describe others of these names.
constexpr std::array kOwnNames{"kex_effect_enable", "u_global_time", "u_total_time", "u_resolution",
    "u_offset", "stRotate", "stScale", "stTranslate", "u_frame_rate"};

constexpr std::array<std::pair<std::string_view, ParamType>, 4> kTypes{{
    {"float", ParamType::real},
    {"integer", ParamType::integer},
    {"floats", ParamType::realArray},
    {"integers", ParamType::integerArray},
}};

bool isArray(ParamType type) { return type == ParamType::realArray || type == ParamType::integerArray; }

bool isUsableName(const Json::Value& name)
{
    if (!name.isString())
        return false;
    const std::string text = name.asString();
    const auto printable = [](unsigned char c) { return c > ' ' && c < 127 && c != '='; };
    return !text.empty() && text.size() <= kLongestName && std::ranges::all_of(text, printable)
        && std::ranges::find(kOwnNames, text) == kOwnNames.end();
}

std::optional<ParamType> typeOf(const Json::Value& word)
{
    if (!word.isString())
        return std::nullopt;
    const auto found = std::ranges::find(kTypes, word.asString(), &decltype(kTypes)::value_type::first);
    return found == kTypes.end() ? std::nullopt : std::optional(found->second);
}

/// A number that a parameter of the type can hold.
std::optional<double> valueOf(const Json::Value& number, ParamType type)
{
    const bool whole = type == ParamType::integer || type == ParamType::integerArray;
    if (whole ? !number.isInt() : !number.isNumeric())
        return std::nullopt;
    const double value = number.asDouble();
    return std::abs(value) <= double(std::numeric_limits<float>::max()) ? std::optional(value) : std::nullopt;
}

/// Default and number of elements. A default that does not fit the type counts as absent.
void readDefault(const Json::Value& entry, ParamInfo& param)
{
    const Json::Value& given = entry["default"];
    const Json::Value& count = entry["count"];
    if (isArray(param.type) && count.isUInt() && count.asUInt() <= ParamInfo::kMaxElements)
        param.elements = std::max(count.asUInt(), 1u);
    param.declared = false;
    if (!isArray(param.type)) {
        if (const auto value = valueOf(given, param.type)) {
            param.value[0] = *value;
            param.declared = true;
        }
        return;
    }
    if (!given.isArray() || given.empty() || given.size() > ParamInfo::kMaxElements)
        return;
    std::array<double, ParamInfo::kMaxElements> values{};
    for (Json::ArrayIndex i = 0; i < given.size(); ++i) {
        const auto value = valueOf(given[i], param.type);
        if (!value)
            return;
        values[i] = *value;
    }
    param.value = values;
    param.elements = given.size();
    param.declared = true;
}

void readRange(const Json::Value& range, ParamInfo& param)
{
    if (!range.isArray() || range.size() != 2)
        return;
    const auto low = valueOf(range[0], param.type);
    const auto high = valueOf(range[1], param.type);
    if (low && high && *low <= *high) {
        param.low = *low;
        param.high = *high;
    }
}

/// "0 off, 1 left" from the names of the values, which count from 0; empty when they are not all names.
std::string choicesText(const Json::Value& names)
{
    std::string text;
    if (!names.isArray())
        return text;
    for (Json::ArrayIndex i = 0; i < names.size(); ++i) {
        const std::string name = plainText(names[i]);
        if (name.empty())
            return {};
        text += (i ? ", " : "") + std::to_string(i) + " " + name;
    }
    return text;
}

class Reader {
public:
    explicit Reader(ShaderDescriptor& descriptor) : descriptor_(descriptor) { }

    void read(const Json::Value& entry)
    {
        if (!entry.isObject() || !isUsableName(entry["name"]))
            return;
        const auto type = typeOf(entry["type"]);
        const std::string name = entry["name"].asString();
        if (!type
            || std::ranges::any_of(descriptor_.params, [&](const ParamInfo& p) { return p.name == name; }))
            return;
        ParamInfo param{keep(name), *type, keep(entry["help"])};
        param.unit = keep(entry["unit"]);
        param.title = keep(entry["title"]);
        readDefault(entry, param);
        const std::string choices = choicesText(entry["choices"]);
        param.choices = keep(choices);
        if (!choices.empty())
            param.high = double(entry["choices"].size() - 1);
        readRange(entry["range"], param);
        descriptor_.params.push_back(param);
    }

private:
    const char* keep(std::string text) { return descriptor_.texts.emplace_back(std::move(text)).c_str(); }
    const char* keep(const Json::Value& text) { return keep(plainText(text)); }

    ShaderDescriptor& descriptor_;
};

} // namespace

std::string plainText(const Json::Value& value)
{
    const auto isControl = [](unsigned char c) { return c < ' ' || c == 127; };
    const std::string text = value.isString() ? value.asString() : std::string();
    return std::ranges::any_of(text, isControl) ? std::string() : text;
}

void readParams(const Json::Value& list, ShaderDescriptor& descriptor)
{
    if (!list.isArray())
        return;
    Reader reader(descriptor);
    for (Json::ArrayIndex i = 0; i < std::min(list.size(), kMostParams); ++i)
        reader.read(list[i]);
}

} // namespace shader
