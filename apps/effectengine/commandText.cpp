// Reading of verbs, options and footers from the command-line parser.
#include "effectengine/commandText.h"

#include <sstream>

namespace tool {

namespace {

// Takes the value's name and choices from the parser's text, such as "KIND:{png,jpg}" or "N:INT in [1 - 9]".
void takeValue(OptionText& text, const CLI::Option& option)
{
    if (option.get_items_expected_max() == 0)
        return;
    const std::string full = option.get_type_name();
    const std::size_t colon = full.find(':');
    text.value = full.substr(0, colon);
    if (text.value.empty())
        text.value = "VALUE";
    if (colon == std::string::npos || full.compare(colon + 1, 1, "{") != 0)
        return;
    std::istringstream list(full.substr(colon + 2, full.find('}') - colon - 2));
    for (std::string choice; std::getline(list, choice, ',');)
        text.choices.push_back(choice);
}

OptionText textOf(const CLI::Option& option)
{
    OptionText text;
    text.help = option.get_description();
    text.positional = option.get_positional();
    text.required = option.get_required();
    text.repeats = option.get_items_expected_max() > 1;
    if (text.positional)
        text.names.push_back(option.get_name(true));
    for (const std::string& name : option.get_snames())
        text.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        text.names.push_back("--" + name);
    takeValue(text, option);
    return text;
}

} // namespace

VerbText textOf(const CLI::App& app)
{
    VerbText text{app.get_name(), app.get_description(), app.get_footer(), {}, {}};
    for (const CLI::Option* const option : app.get_options()) {
        if (!option->get_group().empty())
            text.options.push_back(textOf(*option));
    }
    const auto named = [](const CLI::App* verb) { return !verb->get_name().empty(); };
    for (const CLI::App* const verb : app.get_subcommands(named))
        text.verbs.push_back(textOf(*verb));
    return text;
}

std::vector<std::pair<std::string, std::vector<std::string>>> sectionsOf(const std::string& footer)
{
    std::vector<std::pair<std::string, std::vector<std::string>>> sections{{"", {}}};
    std::istringstream lines(footer);
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with(':') && !line.starts_with(' '))
            sections.push_back({line.substr(0, line.size() - 1), {}});
        else if (!line.empty())
            sections.back().second.push_back(line.substr(line.find_first_not_of(' ')));
    }
    return sections;
}

} // namespace tool
