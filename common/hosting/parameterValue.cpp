// Values on their way into filters, each by the setter of its type.
#include "hosting/parameterValue.h"

#include "text/Text.h"

#include <charconv>

namespace host {

std::string valueText(const ParameterValue& value)
{
    if (const auto* const path = std::get_if<std::string>(&value))
        return *path;
    std::string text;
    for (const double number : std::get<std::vector<double>>(value)) {
        char digits[32];
        const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        text += (text.empty() ? "" : ",") + std::string(digits, end);
    }
    return text;
}

bool store(Filter& filter, const KEXSDK::ParamInfo& info, const ParameterValue& value)
{
    if (const auto* const path = std::get_if<std::string>(&value))
        return filter.set(info.name, text::wide(*path));
    const auto& numbers = std::get<std::vector<double>>(value);
    switch (info.type) {
    case KEXSDK::ParamType::integer:
        return filter.set(info.name, int(numbers.front()));
    case KEXSDK::ParamType::real:
        return filter.set(info.name, float(numbers.front()));
    case KEXSDK::ParamType::integerArray:
        return filter.set(info.name, std::vector<int>(numbers.begin(), numbers.end()));
    case KEXSDK::ParamType::realArray:
        return filter.set(info.name, std::vector<float>(numbers.begin(), numbers.end()));
    case KEXSDK::ParamType::filePath:
        break;
    }
    return false;
}

} // namespace host
