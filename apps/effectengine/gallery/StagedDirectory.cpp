// Old contents move out before new ones move in.
#include "effectengine/gallery/StagedDirectory.h"

#include "effectengine/PartialFile.h"
#include "effectengine/Pictures.h"

#include <unistd.h>

namespace fs = std::filesystem;

StagedDirectory::StagedDirectory(fs::path target)
    : target_(std::move(target)),
      staging_(target_ / (".effectengine-" + std::to_string(getpid()))),
      madeTarget_(!fs::exists(target_))
{
    makeDirectory(target_);
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
            fs::rename(target_ / name, staging_ / (name + ".old"), error);
        if (!error && fs::exists(staging_ / name))
            fs::rename(staging_ / name, target_ / name, error);
        if (error)
            throwCannotWrite(target_ / name, error.value());
    }
}
