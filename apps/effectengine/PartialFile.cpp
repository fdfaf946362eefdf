// Writing under a hidden name beside the target, and renaming.
#include "effectengine/PartialFile.h"

#include "effectengine/ToolError.h"
#include "files/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <fstream>

namespace tool {

namespace fs = std::filesystem;

namespace {

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) { }
    ~Descriptor()
    {
        if (descriptor_ >= 0)
            close(descriptor_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return descriptor_; }

private:
    int descriptor_;
};

constexpr int kNoSuchFiles = -1;

/// Writes a file that has no name until it is complete, so that nothing stays of it when the process is
/// killed.
/// @return an error number, or 0; kNoSuchFiles where the file system has no files without names
int writeNameless(const fs::path& name, std::span<const unsigned char> bytes)
{
    const fs::path directory = name.parent_path().empty() ? "." : name.parent_path();
    const Descriptor file(open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666));
    if (file < 0)
        return kNoSuchFiles;
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return errno;
        bytes = bytes.subspan(std::size_t(std::max<ssize_t>(written, 0)));
    }
    const std::string self = "/proc/self/fd/" + std::to_string(file);
    unlink(name.c_str()); // of an earlier process of the same number
    return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : kNoSuchFiles;
}

/// The part of a hidden name before the number. File systems end names at 255 bytes.
std::string beginOfHidden(const fs::path& target)
{
    constexpr std::size_t kLongest = 200;
    return "." + target.stem().string().substr(0, kLongest) + ".";
}

/// The number in the hidden name that a process gives its part of the target; empty for other names.
std::string_view processOf(std::string_view name, const fs::path& target)
{
    const std::string begin = beginOfHidden(target);
    const std::string end = target.extension().string();
    if (name.size() <= begin.size() + end.size() || !name.starts_with(begin) || !name.ends_with(end))
        return {};
    return name.substr(begin.size(), name.size() - begin.size() - end.size());
}

/// Removes the hidden files of ended processes. Processes of other machines seem to have ended, too, but hold
/// the lock.
void removeOldParts(const fs::path& target)
{
    std::error_code ignored;
    const fs::path directory = target.parent_path().empty() ? "." : target.parent_path();
    for (fs::directory_iterator entry(directory, ignored), end; entry != end; entry.increment(ignored)) {
        const std::string name = entry->path().filename().string();
        if (!isOfEndedProcess(processOf(name, target)))
            continue;
        const Descriptor file(open(entry->path().c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file >= 0 && flock(file, LOCK_EX | LOCK_NB) == 0)
            unlink(entry->path().c_str());
    }
}

} // namespace

PartialFile::PartialFile(fs::path target)
    : target_(files::behindLinks(std::move(target))),
      path_(target_.parent_path()
          / (beginOfHidden(target_) + std::to_string(getpid()) + target_.extension().string())),
      leftover_(path_)
{
}

PartialFile::~PartialFile()
{
    std::error_code ignored;
    if (!kept_)
        fs::remove(path_, ignored);
    if (lock_ >= 0)
        close(lock_);
}

void PartialFile::claim()
{
    removeOldParts(target_);
    // Without the file, or without its lock, the one who writes it finds out what is wrong.
    lock_ = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (lock_ >= 0)
        flock(lock_, LOCK_EX | LOCK_NB);
}

void PartialFile::write(std::span<const unsigned char> bytes) const
{
    if (const int error = writeNameless(path_, bytes); error != kNoSuchFiles) {
        if (error != 0)
            throwCannotWrite(target_, error);
        return;
    }
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
