// Writing under a hidden name beside the target, and renaming.
#include "effectengine/PartialFile.h"

#include "effectengine/ToolError.h"
#include "files/files.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <fstream>

namespace tool {

namespace fs = std::filesystem;

PartialFile::PartialFile(fs::path target)
    : target_(files::behindLinks(std::move(target))),
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

void PartialFile::write(std::span<const unsigned char> bytes) const
{
    errno = 0;
    std::ofstream stream(path_, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    stream.close();
    if (!stream)
        throwCannotWrite(target_, errno ? errno : EIO);
}

void PartialFile::keep()
{
    std::error_code error;
    if (const fs::file_status before = fs::status(target_, error); fs::is_regular_file(before)) {
        if (access(target_.c_str(), W_OK) != 0)
            throwCannotWrite(target_, errno);
        fs::permissions(path_, before.permissions(), error);
    }
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

void writeFile(const fs::path& file, std::span<const unsigned char> bytes)
{
    PartialFile partial(file);
    partial.write(bytes);
    partial.keep();
}

void writeTextFile(const fs::path& file, const std::string& text)
{
    writeFile(file, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

void throwCannotWrite(const fs::path& file, int errorNumber)
{
    if (errorNumber == ENOSPC || errorNumber == EDQUOT)
        throw ToolError(ExitCode::diskFull, "no room on the disk to write " + file.string());
    throw ToolError(
        ExitCode::cannotWrite, "cannot write " + file.string() + ": " + std::strerror(errorNumber));
}

} // namespace tool
