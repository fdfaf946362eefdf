// Publication by renaming: old contents move out before new ones move in.
#include "effectengine/gallery/StagedDirectory.h"

#include "effectengine/PartialFile.h"
#include "effectengine/pictureFiles.h"

#include <unistd.h>

#include <string_view>

namespace tool {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kStagingName = ".effectengine-";
constexpr std::string_view kMovedOut = ".old";

/// Cleans up after processes that were ended by force: what they had moved out of the target and not replaced
/// goes back, and the rest of their files is removed.
void tidyUp(const fs::path& staging, const fs::path& target)
{
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(staging, ignored)) {
        const std::string name = entry.path().filename().string();
        if (!name.ends_with(kMovedOut))
            continue;
        const fs::path place = target / name.substr(0, name.size() - kMovedOut.size());
        if (!fs::exists(place))
            fs::rename(entry.path(), place, ignored);
    }
    fs::remove_all(staging, ignored);
}

void tidyUpAfterEndedProcesses(const fs::path& target)
{
    std::error_code ignored;
    std::vector<fs::path> ended;
    for (const auto& entry : fs::directory_iterator(target, ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(kStagingName)
            && isOfEndedProcess(std::string_view(name).substr(kStagingName.size())))
            ended.push_back(entry.path());
    }
    for (const fs::path& staging : ended)
        tidyUp(staging, target);
}

} // namespace

StagedDirectory::StagedDirectory(fs::path target)
    : target_(std::move(target)),
      staging_(target_ / (std::string(kStagingName) + std::to_string(getpid()))),
      madeTarget_(!fs::exists(target_))
{
    makeDirectory(target_);
    tidyUpAfterEndedProcesses(target_);
    std::error_code error;
    fs::create_directory(staging_, error);
    if (error)
        throwCannotWrite(target_, error.value());
}

StagedDirectory::~StagedDirectory()
{
    std::error_code ignored;
    fs::remove_all(staging_, ignored);
    if (madeTarget_)
        fs::remove(target_, ignored); // stays when anything is in it
}

void StagedDirectory::publish(const std::vector<std::string>& names)
{
    std::error_code error;
    for (const std::string& name : names) {
        if (fs::exists(target_ / name))
            fs::rename(target_ / name, staging_ / (name + std::string(kMovedOut)), error);
        if (!error && fs::exists(staging_ / name))
            fs::rename(staging_ / name, target_ / name, error);
        if (error)
            throwCannotWrite(target_ / name, error.value());
    }
}

} // namespace tool
