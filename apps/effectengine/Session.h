// The engine as the tool starts it: options that all verbs share, resources, logs.
#pragma once

#include "hosting/Host.h"

#include <filesystem>
#include <optional>

namespace tool {

/// Where the engine finds its data and leaves its logs; both may be empty for the defaults.
struct SessionOptions {
    std::filesystem::path resources;
    std::filesystem::path logs;
    std::optional<long long> seed; ///< of random numbers; the time of the start where there is none
};

/// A running engine for one invocation of the tool.
class Session {
public:
    /// Sets environment variables, so no other thread may run yet. Throws ToolError when there is no resource
    /// directory.
    explicit Session(const SessionOptions& options);
    ~Session();

private:
    std::filesystem::path temporaryLogs_; ///< removed at the end; empty when the user named a directory
    std::optional<host::Engine> engine_;
};

/// The named directory, or the one beside the tool in an installed prefix or a build tree.
std::filesystem::path resourceDirectory(const std::filesystem::path& named);

/// Opens the host library with the resource directory. Without a directory that was named or found the
/// effects that descriptor files describe are missing.
void openLibrary(const SessionOptions& options);

} // namespace tool
