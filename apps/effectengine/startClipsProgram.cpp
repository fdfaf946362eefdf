// The verbs for clips in the tool, which becomes the program with FFmpeg's libraries for them.
#include "effectengine/ToolError.h"
#include "effectengine/clipVerbs.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

namespace tool {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> ownArguments()
{
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::vector<std::string> arguments;
    for (std::string argument; std::getline(file, argument, '\0');)
        arguments.push_back(argument);
    return arguments;
}

[[noreturn]] void startClipsProgram()
{
    const fs::path program =
        (fs::read_symlink("/proc/self/exe").parent_path() / EFFECTENGINE_CLIPS_PROGRAM).lexically_normal();
    std::vector<std::string> arguments = ownArguments();
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(program.c_str(), pointers.data());
    throw ToolError(ExitCode::internal, "cannot start " + program.string() + ": " + std::strerror(errno));
}

} // namespace

void runVideo(const VideoOptions&, const GraphOptions&, const SessionOptions&) { startClipsProgram(); }
void runClipTransition(const ClipTransitionOptions&, const SessionOptions&) { startClipsProgram(); }
void runRender(const RenderOptions&, const SessionOptions&) { startClipsProgram(); }
void runCodecs() { startClipsProgram(); }

} // namespace tool
