// effectengine: the engine's effects on the command line.
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"

#include <cstdio>

namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done; 1 internal fault; 2 bad command line, unknown effect or parameter;\n"
    "3 missing input; 4 unreadable input; 5 cannot write the output; 6 an effect failed;\n"
    "7 disk full; 8 the graphics system did not start.";

int report(ExitCode code, const char* message)
{
    std::fprintf(stderr, "effectengine: %s\n", message);
    return int(code);
}

int run(int argc, char** argv)
{
    CLI::App tool("Applies image and video effects to pictures.", "effectengine");
    tool.require_subcommand(1);
    tool.set_version_flag("--version", EFFECTENGINE_VERSION);
    tool.footer(kExitCodes);

    SessionOptions session;
    tool.add_option("--resources", session.resources, "resource directory (default: beside the tool)");
    tool.add_option("--log-dir", session.logs, "keep the engine's logs in this directory");
    tool.add_option("--seed", session.seed, "seed of random looks, for the same result every time");
    addListCommand(tool);
    addDescribeCommand(tool);
    addApplyCommand(tool, session);
    addLutCommand(tool);
    addTransitionCommand(tool, session);

    try {
        tool.parse(argc, argv);
        return int(ExitCode::success);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == int(CLI::ExitCodes::Success))
            return tool.exit(error); // --help, --version
        return report(ExitCode::usage, (std::string(error.what()) + " (see effectengine --help)").c_str());
    }
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const ToolError& error) {
        return report(error.code(), error.what());
    } catch (const std::exception& error) {
        return report(ExitCode::internal, error.what());
    }
}
