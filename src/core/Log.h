// The engine's own log, "EffectEngine.log" in the host's log directory.
#pragma once

#include <string>
#include <string_view>

namespace logging {

/// Severities, the gravest first. Records above `information` are dropped.
enum class Severity { fatal = 1, error, warning, information, debug, verbose };

/// Opens the log once per process: a second call keeps the first file and answers false. A new file
/// starts with a UTF-8 byte-order mark, an existing one is appended to. A file that cannot be opened
/// leaves the process without a log, and the next call may try again.
bool open(const std::string& file) noexcept;

/// True when a record of this severity would be written.
bool admits(Severity severity) noexcept;

/// Writes one line; without an open log, or above `information`, nothing happens. Safe on every thread.
/// @param tag      fully qualified name of the writing function, carried with the record
/// @param message  UTF-8 text without a line end
void write(Severity severity, const char* tag, std::string_view message) noexcept;

/// Writes the line that text() gives, which is called only if records of this severity are written.
template <class Text> void debug(const char* tag, Text text)
{
    if (admits(Severity::debug))
        write(Severity::debug, tag, text());
}

inline void info(const char* tag, std::string_view message) noexcept
{
    write(Severity::information, tag, message);
}
inline void warning(const char* tag, std::string_view message) noexcept
{
    write(Severity::warning, tag, message);
}
inline void error(const char* tag, std::string_view message) noexcept
{
    write(Severity::error, tag, message);
}

} // namespace logging
