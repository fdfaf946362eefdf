// Files of a folder as they become complete.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <vector>

struct inotify_event;

namespace tool {

/// What tells one state of a file from another.
struct FileVersion {
    long long size = 0;
    long long seconds = 0; ///< of its last change
    long nanoseconds = 0;
    unsigned long long inode = 0;
    friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

/// The state of a regular file, behind links; none for anything else.
std::optional<FileVersion> versionOf(const std::filesystem::path& file);

struct FolderWatchOptions {
    bool recursive = false;
    std::optional<std::chrono::duration<double>>
        poll;                      ///< looks at the folder that often instead of being told
    std::filesystem::path without; ///< a directory that does not belong to the folder
};

/// Tells of files when those who write them have closed them: by inotify, and where that tells nothing (at
/// the start, in new folders, after too many events) by looking at the folder. A file that is found by
/// looking is complete when nobody has it open for writing, as far as the system tells, and when it has
/// stayed the same from one look to the next, or for some time.
class FolderWatch {
public:
    /// Throws ToolError: the folder cannot be watched.
    FolderWatch(std::filesystem::path folder, FolderWatchOptions options);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    struct File {
        std::filesystem::path path;
        bool changed; ///< someone has just written it; else it was found, and may be an old one
    };
    /// Waits for complete files, all kinds of them, and gives them in the order of their names. Throws when a
    /// stop is asked, and ToolError when the folder is gone.
    std::vector<File> next();

private:
    using Clock = std::chrono::steady_clock;
    struct Found {
        FileVersion version;
        Clock::time_point since; ///< it has had this version
    };

    void watch(const std::filesystem::path& directory);
    void look(const std::filesystem::path& directory);
    void lookAgain();
    void readEvents();
    void handle(const inotify_event& event);
    void settle();
    bool isComplete(const std::filesystem::path& file, Found& found) const;
    void wait() const;
    bool belongs(const std::filesystem::path& directory) const;

    std::filesystem::path folder_;
    FolderWatchOptions options_;
    int events_ = -1;
    std::map<int, std::filesystem::path> directories_;  ///< by number of the watch
    std::map<std::filesystem::path, Found> found_;      ///< by looking, and not yet known to be complete
    std::map<std::filesystem::path, FileVersion> told_; ///< without inotify: what next() has given
    std::map<std::filesystem::path, bool> complete_;    ///< for next() to give; whether they have changed
};

} // namespace tool
