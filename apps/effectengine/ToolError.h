// Exit codes, and the exceptions that end the tool with one of them.
#pragma once

#include "effectengine/Look.h"

#include <stdexcept>
#include <string>

namespace tool {

/// Exit codes; documented in the README and in --help.
enum class ExitCode {
    success = 0,
    internal = 1,     ///< a fault of the tool or the engine
    usage = 2,        ///< bad command line, unknown effect or parameter, bad value
    missingInput = 3, ///< an input file does not exist
    unreadable = 4,   ///< an input exists but cannot be read or decoded
    cannotWrite = 5,  ///< the output cannot be written
    effectFailed = 6, ///< an effect could not be made or run
    someFailed = 6,   ///< some pictures of a batch failed, and the rest are done
    diskFull = 7,     ///< the output's file system has no room
    noGraphics = 8,   ///< the graphics system did not start
};

/// A failure that ends the tool with one line on stderr.
class ToolError : public std::runtime_error {
public:
    ToolError(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) { }
    ExitCode code() const { return code_; }

private:
    ExitCode code_;
};

/// A failure that was reported before: ends the tool without another line.
class AlreadyReported : public ToolError {
public:
    explicit AlreadyReported(ExitCode code) : ToolError(code, "") { }
};

/// How work ended: with success, or with a code and the words that say why.
struct Outcome {
    ExitCode code = ExitCode::success;
    std::string words{}; ///< empty for success, and for what was reported before
};

/// Runs the work and gives a failure's words, with `place` in front of messages that do not name a file or
/// node themselves. Exceptions that are no std::exception pass.
template <class Work> Outcome outcomeOf(Work work, const std::string& place = {});

/// Runs the work as above; a failure becomes one line on stderr.
template <class Work> ExitCode reportingFailure(Work work, const std::string& place = {});

/// Prints "effectengine: MESSAGE" on a line of its own, also when a progress bar is shown.
void complain(const std::string& message);
/// Prints "effectengine: warning: MESSAGE" in the same way.
void warn(const std::string& message);

ExitCode codeOf(EffectHostResult result);

template <class Work> Outcome outcomeOf(Work work, const std::string& place)
{
    const std::string front = place.empty() ? place : place + ": ";
    try {
        work();
        return {};
    } catch (const ToolError& error) {
        return {error.code(), error.what()};
    } catch (const LookError& error) {
        return {codeOf(error.code()), front + error.what()};
    } catch (const std::exception& error) {
        return {ExitCode::internal, front + error.what()};
    }
}

template <class Work> ExitCode reportingFailure(Work work, const std::string& place)
{
    const Outcome outcome = outcomeOf(work, place);
    if (!outcome.words.empty())
        complain(outcome.words);
    return outcome.code;
}

} // namespace tool
