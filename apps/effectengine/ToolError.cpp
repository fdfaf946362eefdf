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

ExitCode codeOf(EffectHostResult result)
{
    switch (result) {
    case EFFECTHOST_OK:
        return ExitCode::success;
    case EFFECTHOST_BAD_CONTENT:
        return ExitCode::usage;
    case EFFECTHOST_MISSING_FILE:
        return ExitCode::missingInput;
    case EFFECTHOST_UNREADABLE:
        return ExitCode::unreadable;
    case EFFECTHOST_EFFECT_FAILED:
        return ExitCode::effectFailed;
    case EFFECTHOST_BAD_ARGUMENT:
    case EFFECTHOST_NO_ENGINE:
    case EFFECTHOST_NO_MEMORY:
    case EFFECTHOST_INTERNAL:
        break;
    }
    return ExitCode::internal;
}

} // namespace tool
