// man and completion: what the tool says about itself, for other programs.
#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "effectengine/commandPages.h"
#include "effectengine/commands.h"
#include "effectengine/pictureFiles.h"
#include "text/nearest.h"

#include <cstdio>
#include <memory>

namespace tool {

namespace fs = std::filesystem;

namespace {

const VerbText& verbNamed(const VerbText& tool, const std::string& name)
{
    std::vector<std::string_view> names;
    for (const VerbText& verb : tool.verbs) {
        if (verb.name == name)
            return verb;
        names.push_back(verb.name);
    }
    throw ToolError(ExitCode::usage, "no verb \"" + name + "\"" + text::didYouMean(names, name));
}

void printMan(const VerbText& tool, const std::string& verb, const fs::path& directory)
{
    if (directory.empty()) {
        const VerbText* const one = verb.empty() ? nullptr : &verbNamed(tool, verb);
        std::fputs(manPage(tool, one, EFFECTENGINE_VERSION).c_str(), stdout);
        return;
    }
    makeDirectory(directory);
    writeTextFile(directory / (tool.name + ".1"), manPage(tool, nullptr, EFFECTENGINE_VERSION));
    for (const VerbText& one : tool.verbs)
        writeTextFile(
            directory / (tool.name + "-" + one.name + ".1"), manPage(tool, &one, EFFECTENGINE_VERSION));
}

} // namespace

void addManCommand(CLI::App& tool)
{
    struct Options {
        std::string verb;
        fs::path directory;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* const command = tool.add_subcommand("man", "Prints a man page, or writes all of them.");
    command->add_option("VERB", options->verb, "the page of this verb instead of the tool's");
    command->add_option("--dir", options->directory, "write every page into this directory")
        ->type_name("DIR");
    command->footer("Examples:\n"
                    "  effectengine man apply | man -l -\n"
                    "  effectengine man --dir ~/.local/share/man/man1");
    command->callback([options, &tool] { printMan(textOf(tool), options->verb, options->directory); });
}

void addCompletionCommand(CLI::App& tool)
{
    const auto shell = std::make_shared<std::string>();
    CLI::App* const command = tool.add_subcommand("completion", "Prints a completion script for a shell.");
    command->add_option("SHELL", *shell, "which shell")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
    command->footer("Examples:\n"
                    "  source <(effectengine completion bash)\n"
                    "  effectengine completion fish > ~/.config/fish/completions/effectengine.fish");
    command->callback([shell, &tool] {
        const auto script = *shell == "bash" ? bashCompletion
            : *shell == "zsh"                ? zshCompletion
                                             : fishCompletion;
        std::fputs(script(textOf(tool)).c_str(), stdout);
    });
}

} // namespace tool
