// Checks and interpolation of parameter values.
#include "host/ParameterTrack.h"

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

bool whole(const ParamInfo& info)
{
    return info.type == ParamType::integer || info.type == ParamType::integerArray;
}

std::string shortNumber(double number)
{
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number);
    return {text, end};
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
        return number == std::floor(number) && number >= std::numeric_limits<int>::min()
            && number <= std::numeric_limits<int>::max();
    return std::abs(number) <= double(std::numeric_limits<float>::max());
}

std::optional<double> parseNumber(std::string_view text)
{
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

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

double eased(double share, Interpolation interpolation)
{
    switch (interpolation) {
    case Interpolation::linear:
        return share;
    case Interpolation::hold:
        return 0;
    case Interpolation::smooth:
        return share * share * (3 - 2 * share);
    }
    return 0;
}

double position(const FrameTime& time, TimeUnit unit)
{
    switch (unit) {
    case TimeUnit::seconds:
        return time.seconds;
    case TimeUnit::frames:
        return time.seconds * time.frameRate;
    case TimeUnit::percent:
        return time.total > 0 ? 100 * time.seconds / time.total : 0;
    }
    return 0;
}

} // namespace

ParameterTrack::ParameterTrack(const ParamInfo& info, ParameterValue value) : info_(&info)
{
    keyframes_.push_back({0, std::move(value), Interpolation::hold});
    check();
}

ParameterTrack::ParameterTrack(const ParamInfo& info, TimeUnit unit, std::vector<Keyframe> keyframes)
    : info_(&info),
      unit_(unit),
      keyframes_(std::move(keyframes))
{
    check();
}

void ParameterTrack::check() const
{
    const auto fail = [&](const char* what) {
        throw GraphError(GraphFault::content, "parameter " + std::string(info_->name) + ": " + what);
    };
    if (keyframes_.empty())
        fail("there are no keyframes");
    for (const Keyframe& keyframe : keyframes_) {
        checkValue(*info_, keyframe.value);
        if (!std::isfinite(keyframe.time))
            fail("the time of a keyframe is not a number");
    }
    const auto unordered = std::ranges::adjacent_find(
        keyframes_, std::greater_equal{}, [](const Keyframe& k) { return k.time; });
    if (unordered != keyframes_.end())
        fail("the times of the keyframes do not ascend");
    if (info_->type == ParamType::filePath
        && std::any_of(keyframes_.begin(), keyframes_.end() - 1,
            [](const Keyframe& k) { return k.interpolation != Interpolation::hold; }))
        fail("files cannot be mixed; their keyframes hold");
}

ParameterValue ParameterTrack::at(const FrameTime& time) const
{
    const double now = position(time, unit_);
    const auto next = std::ranges::upper_bound(keyframes_, now, {}, [](const Keyframe& k) { return k.time; });
    if (next == keyframes_.begin())
        return keyframes_.front().value;
    const Keyframe& from = *(next - 1);
    if (next == keyframes_.end() || from.interpolation == Interpolation::hold)
        return from.value;
    const double share = eased((now - from.time) / (next->time - from.time), from.interpolation);
    auto numbers = std::get<std::vector<double>>(from.value);
    const auto& targets = std::get<std::vector<double>>(next->value);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = numbers[i] * (1 - share) + targets[i] * share;
        if (whole(*info_))
            numbers[i] = std::floor(numbers[i] + 0.5);
    }
    return numbers;
}

std::vector<std::string> ParameterTrack::warnings() const
{
    std::vector<std::string> lines;
    if (info_->low >= info_->high)
        return lines;
    for (const Keyframe& keyframe : keyframes_) {
        const auto* const numbers = std::get_if<std::vector<double>>(&keyframe.value);
        const auto outside = [&](double n) { return n < info_->low || n > info_->high; };
        if (!numbers)
            continue;
        const auto found = std::ranges::find_if(*numbers, outside);
        if (found != numbers->end())
            lines.push_back(std::string(info_->name) + "=" + shortNumber(*found)
                + " lies outside the advised " + shortNumber(info_->low) + ".." + shortNumber(info_->high));
    }
    return lines;
}

std::vector<std::pair<int, std::string>> choicesOf(const ParamInfo& info)
{
    std::vector<std::pair<int, std::string>> choices;
    std::string_view rest = info.choices;
    while (!rest.empty()) {
        const std::string_view one = rest.substr(0, rest.find(", "));
        rest.remove_prefix(std::min(rest.size(), one.size() + 2));
        int value = 0;
        const auto [end, error] = std::from_chars(one.data(), one.data() + one.size(), value);
        const std::string_view label = one.substr(std::size_t(end - one.data()));
        if (error == std::errc() && label.starts_with(' '))
            choices.emplace_back(value, label.substr(1));
    }
    return choices;
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

std::string expectedValue(const ParamInfo& info)
{
    if (info.type == ParamType::filePath)
        return "a file";
    const std::string kind = whole(info) ? "whole number" : "number";
    if (info.type == ParamType::integerArray || info.type == ParamType::realArray)
        return std::to_string(info.elements) + " " + kind + "s";
    std::string text = "a " + kind;
    const auto choices = choicesOf(info);
    for (std::size_t i = 0; i < choices.size(); ++i)
        text += (i == 0 ? " (" : ", ") + std::to_string(choices[i].first) + " " + choices[i].second;
    return choices.empty() ? text : text + ")";
}

} // namespace host
