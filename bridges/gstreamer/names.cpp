// Titles in kebab case; what would meet a property of every element gets "effect-" in front.
#include "gstreamer/names.h"

#include "text/kebabCase.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace bridge {

namespace {

// Properties that the base classes of elements have, and those of our own elements.
constexpr std::array<std::string_view, 14> kTaken{"name", "parent", "qos", "latency", "min-upstream-latency",
    "start-time", "start-time-selection", "emit-signals", "force-live", "total-time", "start", "duration",
    "file", "look"};

// Parameters that tell effects where they are in time.
constexpr std::array<std::string_view, 3> kOfTheFrame{"u_global_time", "u_total_time", "u_frame_rate"};

// What effects read of a number that nobody has set: 0 where they do not declare it, but for those that
// descriptors have in common, whose examples change nothing.
double initialOf(const EffectHostEffect& effect, const EffectHostParameter& parameter, std::size_t element)
{
    if (parameter.hostDefault)
        return parameter.hostDefault[element];
    return parameter.declared || *effect.descriptor ? parameter.values[element] : 0;
}

template <std::size_t N> bool contains(const std::array<std::string_view, N>& all, std::string_view name)
{
    return std::ranges::find(all, name) != all.end();
}

} // namespace

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
        std::string name = text::kebabCase(parameter.title);
        if (contains(kTaken, name) || !std::isalpha(static_cast<unsigned char>(name.front())))
            name = "effect-" + name;
        if (parameter.elements == 0)
            all.push_back({&parameter, 0, name});
        for (std::size_t element = 0; element < parameter.elements; ++element)
            all.push_back({&parameter, element,
                parameter.elements == 1 ? name : name + '-' + std::to_string(element + 1),
                initialOf(effect, parameter, element)});
    }
    return all;
}

} // namespace bridge
