// A file that appears under its name only when it is complete.
#pragma once

#include "effectengine/interruption.h"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace tool {

/// Names a hidden file beside the target, with the target's extension, and removes it unless keep() was
/// called. A target that is a link stays one; what it leads to is replaced.
class PartialFile {
public:
    explicit PartialFile(std::filesystem::path target);
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;
    ~PartialFile();

    /// The hidden file, which the caller writes.
    const std::filesystem::path& path() const { return path_; }
    const std::filesystem::path& target() const { return target_; }

    /// Writes the whole contents of the hidden file, which has no name before it is complete where the file
    /// system allows that. Throws ToolError.
    void write(std::span<const unsigned char> bytes) const;

    /// To be called before someone else writes the hidden file: makes it and keeps it locked, so that nobody
    /// takes it for what a killed process has left, and removes what such ones have left of this target.
    void claim();

    /// Gives the written file the target's name, and the permissions of the file that was there. Throws
    /// ToolError, also when that file was protected.
    void keep();

private:
    std::filesystem::path target_;
    std::filesystem::path path_;
    Leftover leftover_;
    bool kept_ = false;
    int lock_ = -1; ///< open file that holds the lock of a claimed file
};

/// Whether the rest of a name is the number of a process that has ended, alone or followed by a hyphen: what
/// that process left behind may be removed.
bool isOfEndedProcess(std::string_view rest);

/// Write a file as a whole. Throw ToolError; the target is then as it was before.
void writeFile(const std::filesystem::path& file, std::span<const unsigned char> bytes);
void writeTextFile(const std::filesystem::path& file, const std::string& text);

/// Throws ToolError: diskFull when the error number says so, else cannotWrite.
[[noreturn]] void throwCannotWrite(const std::filesystem::path& file, int errorNumber);

} // namespace tool
