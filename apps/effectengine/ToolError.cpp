// Printing of the tool's messages on stderr, and the way from exceptions to exit codes.
#include "effectengine/ToolError.h"

#include <unistd.h>

#include <cstdio>

namespace tool {

// Prints a message with one write, so that the lines of several processes do not mix.
void complain(const std::string& message)
{
    const char* const clearLine = isatty(STDERR_FILENO) ? "\r\x1b[K" : "";
    const std::string line = clearLine + ("effectengine: " + message) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

void warn(const std::string& message) { complain("warning: " + message); }

ExitCode codeOf(host::GraphFault fault)
{
    switch (fault) {
    case host::GraphFault::content:
        return ExitCode::usage;
    case host::GraphFault::missingFile:
        return ExitCode::missingInput;
    case host::GraphFault::unreadable:
        return ExitCode::unreadable;
    case host::GraphFault::effectFailed:
        return ExitCode::effectFailed;
    }
    return ExitCode::internal;
}

} // namespace tool
