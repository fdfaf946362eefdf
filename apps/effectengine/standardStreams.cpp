// stdin in a file without a name, and writing to stdout.
#include "effectengine/standardStreams.h"

#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace tool {

namespace {

constexpr std::size_t kLargest = std::size_t{1} << 30;

[[noreturn]] void throwUnreadable(const std::string& why)
{
    throw ToolError(ExitCode::unreadable, "cannot read stdin: " + why);
}

// @return 0, or an error number
int writeAll(int file, std::span<const unsigned char> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return errno;
        if (written < 0)
            stopIfAsked();
        else
            bytes = bytes.subspan(std::size_t(written));
    }
    return 0;
}

} // namespace

SpooledInput::SpooledInput(int file) : file_(file), path_("/proc/self/fd/" + std::to_string(file)) { }

SpooledInput::SpooledInput() : SpooledInput(memfd_create("stdin", MFD_CLOEXEC))
{
    if (file_ < 0)
        throwUnreadable(std::strerror(errno));
    std::array<unsigned char, 1 << 16> part;
    for (std::size_t total = 0;;) {
        const ssize_t got = read(STDIN_FILENO, part.data(), part.size());
        if (got == 0)
            return;
        if (got < 0 && errno != EINTR)
            throwUnreadable(std::strerror(errno));
        stopIfAsked();
        if (got < 0)
            continue;
        total += std::size_t(got);
        if (total > kLargest)
            throwUnreadable("it gives more than any picture has");
        if (const int error = writeAll(file_, std::span(part).first(std::size_t(got))))
            throwUnreadable(std::strerror(error));
    }
}

SpooledInput::~SpooledInput() { close(file_); }

std::string SpooledInput::named(std::string message) const
{
    const std::string& path = path_.native();
    for (std::size_t at = message.find(path); at != std::string::npos; at = message.find(path, at))
        message.replace(at, path.size(), "stdin");
    return message;
}

void checkStandardOutput()
{
    if (isatty(STDOUT_FILENO))
        throw ToolError(
            ExitCode::usage, "stdout is a terminal, which shows no pictures: name a file, or use a pipe");
}

void writeStandardOutput(std::span<const unsigned char> bytes)
{
    const int error = writeAll(STDOUT_FILENO, bytes);
    if (error == EPIPE) {
        std::signal(SIGPIPE, SIG_DFL);
        std::raise(SIGPIPE);
    }
    if (error != 0)
        throwCannotWrite("stdout", error);
}

} // namespace tool
