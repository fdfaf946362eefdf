// Man pages in roff, written from the tool's verbs as data.
#include "effectengine/commandPages.h"

#include <algorithm>
#include <cctype>

namespace tool {

namespace {

// The text for roff: dashes become minus signs, which people can copy and type, and a dot or a quote at the
// start of a line, which would be a command, is escaped.
std::string escaped(const std::string& text)
{
    std::string roff;
    if (text.starts_with('.') || text.starts_with('\''))
        roff = "\\&";
    for (const char c : text) {
        if (c == '\\')
            roff += "\\e";
        else if (c == '-')
            roff += "\\-";
        else
            roff += c;
    }
    return roff;
}

std::string bold(const std::string& text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escaped(text) + "\\fR"; }

std::string upper(std::string text)
{
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return text;
}

std::string nameWithValue(const OptionText& option)
{
    std::string text;
    for (const std::string& name : option.names)
        text += (text.empty() ? "" : ", ") + (option.positional ? italic(name) : bold(name));
    return option.positional || option.value.empty() ? text : text + " " + italic(option.value);
}

void addOptions(std::string& page, const VerbText& verb)
{
    for (const OptionText& option : verb.options) {
        page += ".TP\n" + nameWithValue(option) + "\n" + escaped(option.help);
        const bool told = !option.choices.empty() && option.help.find(option.choices[0]) != std::string::npos;
        for (std::size_t i = 0; i < option.choices.size() && !told; ++i)
            page += (i == 0 ? ": " : ", ") + bold(option.choices[i]);
        page += ".\n";
    }
}

void addSynopsis(std::string& page, const std::string& command, const VerbText& verb)
{
    page += ".B " + escaped(command) + "\n";
    const bool hasOptions = std::ranges::any_of(verb.options, [](auto& o) { return !o.positional; });
    if (hasOptions)
        page += "[\\fIOPTION\\fR]...\n";
    for (const OptionText& option : verb.options) {
        if (option.positional)
            page += (option.required ? "" : "[") + italic(option.names[0]) + (option.repeats ? "..." : "")
                + (option.required ? "\n" : "]\n");
    }
    if (!verb.verbs.empty())
        page += "\\fIVERB\\fR ...\n";
}

void addFooter(std::string& page, const std::string& footer)
{
    for (const auto& [title, lines] : sectionsOf(footer)) {
        if (lines.empty())
            continue;
        page += ".SH " + upper(title.empty() ? "Notes" : title) + "\n.nf\n";
        for (const std::string& line : lines)
            page += escaped(line) + "\n";
        page += ".fi\n";
    }
}

// Adds the section of a verb within a verb, such as "lut check" on the page of "lut".
void addInnerVerb(std::string& page, const std::string& command, const VerbText& verb)
{
    page += ".SS " + escaped(command) + "\n";
    addSynopsis(page, command, verb);
    page += ".PP\n" + escaped(verb.help) + "\n";
    addOptions(page, verb);
}

} // namespace

std::string manPage(const VerbText& tool, const VerbText* verb, const std::string& version)
{
    const VerbText& about = verb ? *verb : tool;
    const std::string page = verb ? tool.name + "-" + verb->name : tool.name;
    const std::string command = verb ? tool.name + " " + verb->name : tool.name;
    std::string roff = ".TH " + upper(page) + " 1 \"\" \"EffectEngine " + version + "\" \"User Commands\"\n";
    std::string summary = about.help;
    if (summary.ends_with('.'))
        summary.pop_back();
    roff += ".SH NAME\n" + escaped(page) + " \\- " + escaped(summary) + "\n.SH SYNOPSIS\n";
    addSynopsis(roff, command, about);
    roff += ".SH OPTIONS\n";
    addOptions(roff, about);
    if (!about.verbs.empty()) {
        roff += ".SH VERBS\n";
        for (const VerbText& inner : about.verbs) {
            if (verb)
                addInnerVerb(roff, command + " " + inner.name, inner);
            else
                roff += ".TP\n" + bold(tool.name + "-" + inner.name) + "(1)\n" + escaped(inner.help) + "\n";
        }
    }
    addFooter(roff, about.footer);
    if (verb)
        roff += ".SH SEE ALSO\n" + bold(tool.name)
            + "(1) has the options that come before the verb, and the exit codes.\n";
    return roff;
}

} // namespace tool
