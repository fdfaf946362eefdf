// Checks and spelling of parameter values.
#include "host/values.h"

#include "host/GraphError.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

namespace host {

namespace {

constexpr double kLeastInt = std::numeric_limits<int>::min();
constexpr double kMostInt = std::numeric_limits<int>::max();
constexpr double kMostFloat = std::numeric_limits<float>::max();

bool whole(const ParamInfo& info)
{
    return info.type == ParamType::integer || info.type == ParamType::integerArray;
}

[[noreturn]] void refuse(const ParamInfo& info, const std::string& found)
{
    throw GraphError(GraphFault::content,
        "parameter " + std::string(info.name) + " takes " + expectedValue(info) + ", not " + found);
}

bool fits(const ParamInfo& info, double number)
{
    if (!std::isfinite(number))
        return false;
    if (whole(info))
        return number == std::floor(number) && number >= kLeastInt && number <= kMostInt;
    return std::abs(number) <= kMostFloat;
}

std::optional<double> parseNumber(std::string_view text)
{
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace

void checkValue(const ParamInfo& info, const ParameterValue& value)
{
    if (info.type == ParamType::filePath) {
        if (!std::holds_alternative<std::string>(value))
            refuse(info, "numbers");
        return;
    }
    const auto* const numbers = std::get_if<std::vector<double>>(&value);
    if (!numbers)
        refuse(info, "\"" + std::get<std::string>(value) + "\"");
    if (numbers->size() != info.elements)
        refuse(info, std::to_string(numbers->size()));
    for (const double number : *numbers) {
        if (!fits(info, number))
            refuse(info, shortNumber(number));
    }
}

double storable(const ParamInfo& info, double number)
{
    return whole(info) ? std::clamp(std::floor(number + 0.5), kLeastInt, kMostInt)
                       : std::clamp(number, -kMostFloat, kMostFloat);
}

ParamInfo elementOf(const ParamInfo& info)
{
    ParamInfo element = info;
    if (isArray(info))
        element.type = whole(info) ? ParamType::integer : ParamType::real;
    element.elements = 1;
    return element;
}

bool isArray(const ParamInfo& info)
{
    return info.type == ParamType::integerArray || info.type == ParamType::realArray;
}

ParameterValue parseValue(const ParamInfo& info, std::string_view text)
{
    if (info.type == ParamType::filePath)
        return std::string(text);
    for (const auto& [value, label] : choicesOf(info)) {
        if (label == text)
            return std::vector<double>{double(value)};
    }
    std::vector<double> numbers;
    for (std::string_view rest = text;;) {
        const std::size_t comma = rest.find(',');
        const auto number = parseNumber(rest.substr(0, comma));
        if (!number || !fits(info, *number))
            refuse(info, "\"" + std::string(text) + "\"");
        numbers.push_back(*number);
        if (comma == std::string_view::npos)
            break;
        rest.remove_prefix(comma + 1);
    }
    if (numbers.size() != info.elements)
        refuse(info, "\"" + std::string(text) + "\"");
    return numbers;
}

bool mayBeInPack(const ParamInfo& info, std::string_view path)
{
    return *info.packFolder && !path.empty() && path.find('/') == std::string_view::npos;
}

std::string expectedValue(const ParamInfo& info)
{
    if (info.type == ParamType::filePath)
        return "a file";
    const std::string kind = whole(info) ? "whole number" : "number";
    if (isArray(info))
        return std::to_string(info.elements) + " " + kind + "s";
    std::string text = "a " + kind;
    const auto choices = choicesOf(info);
    for (std::size_t i = 0; i < choices.size(); ++i)
        text += (i == 0 ? " (" : ", ") + std::to_string(choices[i].first) + " " + choices[i].second;
    return choices.empty() ? text : text + ")";
}

std::string shortNumber(double number)
{
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number);
    return {text, end};
}

} // namespace host
