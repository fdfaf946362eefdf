// The engine as the tool starts it: options that all verbs share, resources, logs.
#pragma once

#include "host/Host.h"

#include <filesystem>
#include <optional>

namespace tool {

/// Where the engine finds its data and leaves its logs; both may be empty for the defaults.
struct SessionOptions {
    std::filesystem::path resources;
    std::filesystem::path logs;
    std::optional<long long> seed; ///< pins the clock, from which random tables take their seeds
};

/// A running engine for one invocation of the tool.
class Session {
public:
    /// Throws ToolError when there is no resource directory.
    explicit Session(const SessionOptions& options);
    ~Session();

private:
    std::filesystem::path temporaryLogs_; ///< removed at the end; empty when the user named a directory
    std::optional<host::Engine> engine_;
};

/// The named directory, or the one beside the tool in an installed prefix or a build tree.
std::filesystem::path resourceDirectory(const std::filesystem::path& named);

/// Adds the shader effects of the resource directory to the list of effects. Without a directory that was
/// named or found there are none.
void listShaderEffects(const SessionOptions& options);

} // namespace tool
