// A file that appears under its name only when it is complete.
#pragma once

#include "effectengine/interruption.h"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

/// Names a hidden file beside the target, with the target's extension, and removes it unless kept. A target
/// that is a link stays one; what it leads to is replaced.
class PartialFile {
public:
    explicit PartialFile(std::filesystem::path target);
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;
    ~PartialFile();

    /// Where to write.
    const std::filesystem::path& path() const { return path_; }
    const std::filesystem::path& target() const { return target_; }

    /// Makes the bytes all there is in the file. Throws ToolError.
    void write(std::span<const unsigned char> bytes) const;

    /// The written file takes the target's name, and the permissions of what was there. Throws ToolError,
    /// also when that was protected.
    void keep();

private:
    std::filesystem::path target_;
    std::filesystem::path path_;
    Leftover leftover_;
    bool kept_ = false;
};

/// Whether a name continues with the number of a process that is no more, and with nothing or a hyphen after
/// it: what it left behind may go.
bool isOfEndedProcess(std::string_view rest);

/// Writes a text as a whole. Throws ToolError; the target is then as it was before.
void writeTextFile(const std::filesystem::path& file, const std::string& text);

/// Throws ToolError: diskFull when the error number says so, else cannotWrite.
[[noreturn]] void throwCannotWrite(const std::filesystem::path& file, int errorNumber);
