// Start and end of the engine: its resources, its logs, and what it reads from the environment.
#include "effectengine/Session.h"

#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "effectengine/effectList.h"

#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <string_view>

namespace tool {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTemporaryName = "effectengine-";

/// Removes the logs of processes that were ended by force.
void removeOldLogs()
{
    std::error_code ignored;
    for (fs::directory_iterator entry(fs::temp_directory_path(), ignored), end; entry != end;
         entry.increment(ignored)) {
        const std::string name = entry->path().filename().string();
        if (name.starts_with(kTemporaryName)
            && isOfEndedProcess(std::string_view(name).substr(kTemporaryName.size())))
            fs::remove_all(entry->path(), ignored);
    }
}

void setUnlessGiven(const char* variable, const char* value)
{
    const char* const given = std::getenv(variable);
    if (!given || !*given)
        setenv(variable, value, 1);
}

/// Tells the engine, which is not running yet, how to draw. The user's own variables stand. There is always a
/// seed, so that all pictures of one run begin with the same random numbers.
void setEnvironment(const SessionOptions& options)
{
    if (options.seed)
        setenv("EFFECTENGINE_SEED", std::to_string(*options.seed).c_str(), 1);
    else
        setUnlessGiven("EFFECTENGINE_SEED", std::to_string(std::time(nullptr)).c_str());
    setUnlessGiven("EFFECTENGINE_PATH", "auto");
    setUnlessGiven("EFFECTENGINE_GRAPHICS", "when-needed");
}

fs::path makeTemporaryDirectory()
{
    removeOldLogs();
    std::string name =
        (fs::temp_directory_path() / (std::string(kTemporaryName) + std::to_string(getpid()) + "-XXXXXX"))
            .string();
    if (!mkdtemp(name.data()))
        throw ToolError(ExitCode::cannotWrite,
            "cannot make a directory for logs in " + fs::temp_directory_path().string());
    return name;
}

} // namespace

fs::path resourceDirectory(const fs::path& named)
{
    if (!named.empty()) {
        if (!fs::is_directory(named))
            throw ToolError(ExitCode::missingInput, "no resource directory " + named.string());
        return named;
    }
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    // The program for clips lies one directory deeper than the tool: from there it is two levels up.
    for (const char* const place :
        {"../share/effectengine", "../resources", "../../share/effectengine", "../../resources"}) {
        const fs::path candidate = (program / place).lexically_normal();
        if (fs::exists(candidate / "resources.cfg"))
            return candidate;
    }
    throw ToolError(ExitCode::missingInput,
        "no resource directory beside " + program.string() + "; name one with --resources");
}

void openLibrary(const SessionOptions& options)
{
    fs::path resources;
    try {
        resources = resourceDirectory(options.resources);
    } catch (const ToolError&) {
        if (!options.resources.empty())
            throw;
    }
    succeed(EffectHostOpen(resources.empty() ? nullptr : resources.c_str(), nullptr));
}

Session::Session(const SessionOptions& options)
{
    setEnvironment(options);
    const std::string resources = resourceDirectory(options.resources).string() + "/";
    fs::path logs = options.logs;
    if (logs.empty())
        logs = temporaryLogs_ = makeTemporaryDirectory();
    else
        fs::create_directories(logs);
    engine_.emplace(resources, (logs.string() + "/").c_str());
}

Session::~Session()
{
    engine_.reset();
    std::error_code ignored;
    if (!temporaryLogs_.empty())
        fs::remove_all(temporaryLogs_, ignored);
}

} // namespace tool
