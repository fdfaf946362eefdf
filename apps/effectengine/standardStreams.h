// Pictures through pipes: stdin as a file, and bytes to stdout.
#pragma once

#include <filesystem>
#include <span>
#include <string>

namespace tool {

/// All that comes through stdin, in memory, under the path of a file that can be read more than once.
class SpooledInput {
public:
    /// Reads to the end. Throws ToolError: stdin is closed, cannot be read, or gives more than any picture
    /// has.
    SpooledInput();
    ~SpooledInput();
    SpooledInput(const SpooledInput&) = delete;
    SpooledInput& operator=(const SpooledInput&) = delete;

    const std::filesystem::path& path() const { return path_; }
    /// A message with "stdin" in place of the path.
    std::string named(std::string message) const;

private:
    explicit SpooledInput(int file);

    int file_;
    std::filesystem::path path_;
};

/// Throws ToolError when stdout is a terminal, which can show no picture.
void checkStandardOutput();

/// Writes bytes to stdout. When nobody reads any more, the process ends by SIGPIPE as other filters do.
/// Throws ToolError.
void writeStandardOutput(std::span<const unsigned char> bytes);

} // namespace tool
