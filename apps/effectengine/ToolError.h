// How the tool ends.
#pragma once

#include <stdexcept>
#include <string>

/// Exit codes; documented in the README and in --help.
enum class ExitCode {
    success = 0,
    internal = 1,     ///< a fault of the tool or the engine
    usage = 2,        ///< bad command line, unknown effect or parameter, bad value
    missingInput = 3, ///< an input file does not exist
    unreadable = 4,   ///< an input exists but cannot be read or decoded
    cannotWrite = 5,  ///< the output cannot be written
    effectFailed = 6, ///< an effect could not be made or run
    diskFull = 7,     ///< the output's file system has no room
    noGraphics = 8,   ///< the graphics system, which also reads pictures, did not start
};

/// Ends the tool with one line on stderr.
class ToolError : public std::runtime_error {
public:
    ToolError(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) { }
    ExitCode code() const { return code_; }

private:
    ExitCode code_;
};
