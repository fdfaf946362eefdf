// From words on the command line to a filter.
#include "effectengine/EffectStep.h"

#include "effectengine/ToolError.h"
#include "platform/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <optional>

using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

namespace {

std::size_t editDistance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

template <class Range, class Name>
std::string nearest(const Range& candidates, Name nameOf, std::string_view wanted)
{
    const auto best = std::ranges::min_element(
        candidates, {}, [&](const auto& c) { return editDistance(nameOf(c), wanted); });
    return best == candidates.end() ? std::string() : std::string(nameOf(*best));
}

template <class Number> std::optional<Number> parsed(std::string_view text)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    if (!std::isfinite(double(number)))
        return std::nullopt;
    return number;
}

template <class Number> Number parsedOr(const ParamInfo& param, std::string_view text, const char* expected)
{
    const auto number = parsed<Number>(text);
    if (!number)
        throw ToolError(ExitCode::usage,
            "parameter " + std::string(param.name) + " takes " + expected + ", not \"" + std::string(text)
                + "\"");
    if (double(*number) < param.low || double(*number) > param.high)
        std::fprintf(stderr, "effectengine: warning: %s=%g lies outside the advised %g..%g\n", param.name,
            double(*number), param.low, param.high);
    return *number;
}

template <class Number>
std::vector<Number> parsedList(const ParamInfo& param, std::string_view text, const char* expected)
{
    std::vector<Number> numbers;
    while (true) {
        const std::size_t comma = text.find(',');
        numbers.push_back(parsedOr<Number>(param, text.substr(0, comma), expected));
        if (comma == std::string_view::npos)
            break;
        text.remove_prefix(comma + 1);
    }
    if (numbers.size() != param.elements)
        throw ToolError(ExitCode::usage,
            "parameter " + std::string(param.name) + " takes " + std::to_string(param.elements)
                + " numbers separated by commas");
    return numbers;
}

} // namespace

EffectStep stepFor(const std::string& nameOrGuid)
{
    const KEXSDK::EffectInfo* const effect = findEffect(nameOrGuid);
    if (!effect)
        throw ToolError(ExitCode::usage,
            "no effect \"" + nameOrGuid + "\"; did you mean \""
                + nearest(
                    listEffects(), [](const auto& e) { return std::string_view(e.name); }, nameOrGuid)
                + "\"? (effectengine list shows all)");
    return {*effect, {}};
}

void addParameter(EffectStep& step, const std::string& assignment)
{
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos)
        throw ToolError(ExitCode::usage, "a parameter is written name=value, not \"" + assignment + "\"");
    const std::string name = assignment.substr(0, equals);
    const std::string_view value = std::string_view(assignment).substr(equals + 1);
    const auto params = describeParameters(step.effect.guid);
    const auto param =
        std::ranges::find(params, std::string_view(name), [](auto* p) { return std::string_view(p->name); });
    if (param == params.end())
        throw ToolError(ExitCode::usage,
            "effect " + step.effect.name + " has no parameter \"" + name + "\"; did you mean \""
                + nearest(
                    params, [](auto* p) { return std::string_view(p->name); }, name)
                + "\"?");
    switch ((*param)->type) {
    case ParamType::integer:
        step.parameters.push_back({name, parsedOr<int>(**param, value, "a whole number")});
        break;
    case ParamType::real:
        step.parameters.push_back({name, parsedOr<float>(**param, value, "a number")});
        break;
    case ParamType::integerArray:
        step.parameters.push_back({name, parsedList<int>(**param, value, "whole numbers")});
        break;
    case ParamType::realArray:
        step.parameters.push_back({name, parsedList<float>(**param, value, "numbers")});
        break;
    case ParamType::filePath:
        step.parameters.push_back({name, text::wide(value)});
        break;
    }
}

host::Filter makeFilter(const EffectStep& step, unsigned width, unsigned height)
{
    try {
        host::Filter filter(step.effect.guid, int(width), int(height));
        for (const ParameterValue& parameter : step.parameters) {
            const bool stored = std::visit(
                [&](const auto& value) { return filter.set(parameter.name, value); }, parameter.value);
            if (!stored)
                throw ToolError(ExitCode::effectFailed,
                    "effect " + step.effect.name + " refuses the value of " + parameter.name);
        }
        return filter;
    } catch (const host::Failure&) {
        throw ToolError(ExitCode::effectFailed, "effect " + step.effect.name + " is not available here");
    }
}
