// Steps of a sweep: even ones over a range, or all values of a mode.
#include "effectengine/gallery/sweepSteps.h"

#include "effectengine/effectList.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>

namespace tool {

using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

namespace {

constexpr int kSteps = 7;

// A parameter that at least one effect in so many has comes with the kind of a node: families of effects
// share parameters as well, but none of them is as large.
constexpr std::size_t kCommonShare = 5;

std::set<std::string> findCommonParameters()
{
    const auto effects = listEffects();
    std::map<std::pair<std::string, std::string>, std::size_t> effectsWith;
    for (const KEXSDK::EffectInfo& effect : effects) {
        for (const ParamInfo* const param : describeParameters(effect))
            ++effectsWith[{param->name, param->help}];
    }
    std::set<std::string> names;
    for (const auto& [param, count] : effectsWith) {
        if (count * kCommonShare >= effects.size())
            names.insert(param.first);
    }
    return names;
}

bool whole(const ParamInfo& param)
{
    return param.type == ParamType::integer || param.type == ParamType::integerArray;
}

SweepStep stepOf(std::vector<double> numbers, const std::string& label = {})
{
    const std::string text = commandText(numbers);
    return {std::move(numbers), text, label.empty() ? text : label};
}

// The value rounded to three digits of the range, so that labels stay short.
double rounded(double value, double span)
{
    const double unit = std::pow(10.0, std::floor(std::log10(span)) - 2);
    return std::round(value / unit) * unit;
}

} // namespace

const std::set<std::string>& commonParameters()
{
    static const std::set<std::string> names = findCommonParameters();
    return names;
}

std::string commandText(const std::vector<double>& numbers)
{
    std::string text;
    for (const double number : numbers) {
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, float(number)).ptr;
        text += (text.empty() ? "" : ",") + std::string(digits, end);
    }
    return text;
}

std::vector<SweepStep> sweepOf(const ParamInfo& param, PictureSize size)
{
    std::vector<SweepStep> steps;
    if (commonParameters().contains(param.name) || param.type == ParamType::filePath
        || param.low >= param.high)
        return steps;
    for (const auto& [value, label] : KEXSDK::choicesOf(param))
        steps.push_back(stepOf({double(value)}, label));
    if (!steps.empty())
        return steps;
    const bool position = std::string_view(param.unit) == "pixels" && param.elements == 2;
    const std::array<double, 2> ends{double(size.width), double(size.height)};
    const double span = position ? std::max(ends[0], ends[1]) : param.high - param.low;
    const int count = whole(param) ? int(std::min<double>(kSteps, span + 1)) : kSteps;
    for (int i = 0; i < count; ++i) {
        const double share = double(i) / (count - 1);
        std::vector<double> numbers;
        for (u32 element = 0; element < param.elements; ++element) {
            const double value = position ? ends[element] * share : param.low + span * share;
            numbers.push_back(whole(param) ? std::round(value) : rounded(value, span));
        }
        steps.push_back(stepOf(std::move(numbers)));
    }
    return steps;
}

} // namespace tool
