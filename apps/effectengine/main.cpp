// The program effectengine: options of all verbs, the verbs, and exit codes.
#include "effectengine/ToolError.h"
#include "effectengine/clipVerbs.h"
#include "effectengine/commands.h"

namespace tool {

namespace {

constexpr const char* kFooter =
    "Examples:\n"
    "  effectengine list --search blur\n"
    "  effectengine apply hue-shift -p Hue=20 in.jpg out.png\n"
    "  effectengine apply --help\n"
    "\n"
    "Exit codes:\n"
    "  0  done\n"
    "  1  internal fault\n"
    "  2  bad command line, unknown effect or parameter, bad value\n"
    "  3  missing input\n"
    "  4  unreadable input\n"
    "  5  cannot write the output\n"
    "  6  an effect failed; of many pictures: some failed, and the rest are done\n"
    "  7  disk full\n"
    "  8  the graphics system did not start";

void run(int argc, char** argv)
{
    CLI::App tool("Applies image and video effects to pictures.", "effectengine");
    tool.require_subcommand(1);
    tool.set_version_flag("--version", EFFECTENGINE_VERSION);

    SessionOptions session;
    tool.add_option("--resources", session.resources, "resource directory (default: beside the tool)")
        ->type_name("DIR");
    tool.add_option("--log-dir", session.logs, "keep the engine's logs in this directory")->type_name("DIR");
    tool.add_option("--seed", session.seed, "seed of random looks, for the same result every time")
        ->type_name("N");
    tool.parse_complete_callback([&session] { openLibrary(session); }); // before any command's work
    addListCommand(tool);
    addDescribeCommand(tool);
    addApplyCommand(tool, session);
    addWatchCommand(tool, session);
    addLutCommand(tool);
    addTransitionCommand(tool, session);
    addSheetCommand(tool, session);
    addBenchCommand(tool, session);
    addDoctorCommand(tool, session);
    addGalleryCommand(tool, session);
    addManCommand(tool);
    addCompletionCommand(tool);
    addVideoCommand(tool, session);
    addRenderCommand(tool, session);
    tool.footer(kFooter); // last: verbs would inherit it

    try {
        tool.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != int(CLI::ExitCodes::Success))
            throw ToolError(ExitCode::usage, std::string(error.what()) + " (see effectengine --help)");
        tool.exit(error); // --help, --version
    }
}

} // namespace

} // namespace tool

int main(int argc, char** argv)
{
    return int(tool::reportingFailure([&] { tool::run(argc, argv); }));
}
