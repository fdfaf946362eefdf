// Titles in kebab case; what would meet a property of every element gets "effect-" in front.
#include "gstreamer/names.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace bridge {

namespace {

// Properties that the base classes of elements have, and those of our own elements.
constexpr std::array<std::string_view, 14> kTaken{"name", "parent", "qos", "latency", "min-upstream-latency",
    "start-time", "start-time-selection", "emit-signals", "ignore-inactive-pads", "total-time", "start",
    "duration", "file", "look"};

// Parameters that tell effects where they are in time.
constexpr std::array<std::string_view, 3> kOfTheFrame{"u_global_time", "u_total_time", "u_frame_rate"};

template <std::size_t N> bool contains(const std::array<std::string_view, N>& all, std::string_view name)
{
    return std::ranges::find(all, name) != all.end();
}

} // namespace

std::string kebabCase(std::string_view title)
{
    std::string name;
    for (const char c : title) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) && byte < 128)
            name += char(std::tolower(byte));
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    if (!name.empty() && name.back() == '-')
        name.pop_back();
    return name;
}

std::string typeName(std::string_view prefix, std::string_view effect)
{
    std::string name(prefix);
    bool begins = true;
    for (const char c : effect) {
        if (c != '-')
            name += begins ? char(std::toupper(static_cast<unsigned char>(c))) : c;
        begins = c == '-';
    }
    return name;
}

std::vector<Property> propertiesOf(const EffectHostEffect& effect)
{
    std::vector<Property> all;
    for (std::uint32_t i = 0; i < effect.parameterCount; ++i) {
        const EffectHostParameter& parameter = effect.parameters[i];
        if (contains(kOfTheFrame, parameter.name))
            continue;
        std::string name = kebabCase(parameter.title);
        if (contains(kTaken, name) || !std::isalpha(static_cast<unsigned char>(name.front())))
            name = "effect-" + name;
        if (parameter.elements <= 1)
            all.push_back({&parameter, 0, name});
        else
            for (std::size_t element = 0; element < parameter.elements; ++element)
                all.push_back({&parameter, element, name + '-' + std::to_string(element + 1)});
    }
    return all;
}

} // namespace bridge
