// Reading of patterns, and their filling in.
#include "effectengine/renamePattern.h"

#include "effectengine/ToolError.h"
#include "text/nearest.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tool {

namespace {

using Facts = RenamePattern::Facts;

constexpr std::array<std::pair<std::string_view, std::string Facts::*>, 5> kFields{{{"name", &Facts::name},
    {"effect", &Facts::effect}, {"ext", &Facts::ext}, {"parent", &Facts::parent}, {"index", &Facts::index}}};

[[noreturn]] void refuse(const std::string& pattern, const std::string& why)
{
    throw ToolError(ExitCode::usage, "--rename \"" + pattern + "\": " + why);
}

std::string Facts::*fieldNamed(const std::string& pattern, std::string_view name)
{
    std::vector<std::string_view> names;
    for (const auto& [known, field] : kFields) {
        if (known == name)
            return field;
        names.push_back(known);
    }
    refuse(pattern,
        "no field {" + std::string(name) + "}" + text::didYouMean(names, std::string(name))
            + "; there are {name}, {effect}, {ext}, {parent} and {index}");
}

} // namespace

RenamePattern::RenamePattern(const std::string& pattern)
{
    if (pattern.find('/') != std::string::npos)
        refuse(pattern, "names have no slashes; results stay in their folders");
    std::string text;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const char c = pattern[at];
        if (c != '{' && c != '}') {
            text += c;
        } else if (at + 1 < pattern.size() && pattern[at + 1] == c) { // doubled
            text += c;
            ++at;
        } else {
            const std::size_t end = pattern.find('}', at);
            if (c == '}' || end == std::string::npos)
                refuse(pattern, "a single brace; braces of names are doubled");
            parts_.push_back({std::exchange(text, {}), nullptr});
            parts_.push_back(
                {{}, fieldNamed(pattern, std::string_view(pattern).substr(at + 1, end - at - 1))});
            at = end;
        }
    }
    parts_.push_back({text, nullptr});
}

std::string RenamePattern::nameFor(const Facts& facts) const
{
    std::string name;
    for (const Part& part : parts_)
        name += part.field ? facts.*part.field : part.text;
    if (name.empty() || name == "." || name == "..")
        throw ToolError(ExitCode::usage, "--rename gives \"" + name + "\", which is no name of a file");
    return name;
}

bool RenamePattern::has(std::string Facts::*field) const
{
    return std::ranges::find(parts_, field, &Part::field) != parts_.end();
}

} // namespace tool
