// Writing beside, then renaming.
#include "effectengine/PartialFile.h"

#include "effectengine/ToolError.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace fs = std::filesystem;

PartialFile::PartialFile(fs::path target)
    : target_(std::move(target)),
      path_(target_.parent_path()
          / ("." + target_.stem().string() + "." + std::to_string(getpid()) + target_.extension().string()))
{
}

PartialFile::~PartialFile()
{
    std::error_code ignored;
    if (!kept_)
        fs::remove(path_, ignored);
}

void PartialFile::keep()
{
    std::error_code error;
    fs::rename(path_, target_, error);
    if (error)
        throwCannotWrite(target_, error.value());
    kept_ = true;
}

void writeTextFile(const fs::path& file, const std::string& text)
{
    PartialFile partial(file);
    errno = 0;
    std::ofstream stream(partial.path(), std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
        throwCannotWrite(file, errno ? errno : EIO);
    partial.keep();
}

void throwCannotWrite(const fs::path& file, int errorNumber)
{
    if (errorNumber == ENOSPC || errorNumber == EDQUOT)
        throw ToolError(ExitCode::diskFull, "no room on the disk to write " + file.string());
    throw ToolError(
        ExitCode::cannotWrite, "cannot write " + file.string() + ": " + std::strerror(errorNumber));
}
