// Writing beside, then renaming.
#include "effectengine/PartialFile.h"

#include "effectengine/ToolError.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <fstream>

namespace fs = std::filesystem;

PartialFile::PartialFile(fs::path target)
    : target_(std::move(target)),
      path_(target_.parent_path()
          / ("." + target_.stem().string() + "." + std::to_string(getpid()) + target_.extension().string())),
      leftover_(path_)
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

bool isOfEndedProcess(std::string_view rest)
{
    pid_t process = 0;
    const char* const end = rest.data() + rest.size();
    const auto number = std::from_chars(rest.data(), end, process);
    return number.ec == std::errc() && process > 0 && (number.ptr == end || *number.ptr == '-')
        && kill(process, 0) != 0 && errno == ESRCH;
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
