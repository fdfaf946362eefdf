// A directory whose new contents appear together, when all of them are complete.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

/// Gathers files in a hidden directory inside the target, so that both are on one disk. Removes it at the
/// end, and the target as well if this object made it and nothing was published.
class StagedDirectory {
public:
    /// Makes the target if it is missing. Throws ToolError.
    explicit StagedDirectory(std::filesystem::path target);
    StagedDirectory(const StagedDirectory&) = delete;
    StagedDirectory& operator=(const StagedDirectory&) = delete;
    ~StagedDirectory();

    /// The hidden directory, into which the caller writes.
    const std::filesystem::path& path() const { return staging_; }

    /// Moves the files and directories of these names into the target, in place of those that were there;
    /// what was not written anew goes as well. Throws ToolError.
    void publish(const std::vector<std::string>& names);

private:
    std::filesystem::path target_;
    std::filesystem::path staging_;
    bool madeTarget_;
};

} // namespace tool
