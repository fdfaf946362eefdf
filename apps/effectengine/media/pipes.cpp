// Ends of pipes: waiting for the other side, and its end.
#include "effectengine/media/pipes.h"

#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

constexpr int kBufferBytes = 1 << 16;

/// How long a read waits before it looks whether a stop is asked.
constexpr int kPatienceMs = 100;

/// What an AVIOContext of a pipe carries with it.
class PipeEnd {
public:
    explicit PipeEnd(int file) : file_(file) { }
    PipeEnd(const PipeEnd&) = delete;
    PipeEnd& operator=(const PipeEnd&) = delete;
    ~PipeEnd()
    {
        if (hearsNoSignal_)
            sigaction(SIGPIPE, &before_, nullptr);
        close(file_);
    }

    void ignoreClosedReader()
    {
        struct sigaction action { };
        action.sa_handler = SIG_IGN;
        sigaction(SIGPIPE, &action, &before_);
        hearsNoSignal_ = true;
    }

    bool wasIgnoredBefore() const { return before_.sa_handler == SIG_IGN; }

    void abandon() { abandoned_ = true; }

    int read(std::uint8_t* bytes, int count) const
    {
        while (!stopAsked() && !abandoned_) {
            pollfd waiting{file_, POLLIN, 0};
            const int ready = poll(&waiting, 1, kPatienceMs);
            const ssize_t got = ready > 0 ? ::read(file_, bytes, std::size_t(count)) : ready;
            if (ready > 0 && got >= 0)
                return got == 0 ? AVERROR_EOF : int(got);
            if (got < 0 && errno != EINTR)
                return AVERROR(errno);
        }
        return AVERROR_EXIT;
    }

    int write(const std::uint8_t* bytes, int count) const
    {
        for (int written = 0; written < count;) {
            const ssize_t put = ::write(file_, bytes + written, std::size_t(count - written));
            if (put >= 0)
                written += int(put);
            else if (errno != EINTR)
                return AVERROR(errno);
            else if (stopAsked())
                return AVERROR_EXIT;
        }
        return count;
    }

private:
    int file_;
    std::atomic<bool> abandoned_ = false;
    bool hearsNoSignal_ = false;
    struct sigaction before_ { };
};

PipeEnd& endOf(const AVIOContext& pipe) { return *static_cast<PipeEnd*>(pipe.opaque); }

int readPipe(void* end, std::uint8_t* bytes, int count)
{
    return static_cast<PipeEnd*>(end)->read(bytes, count);
}

int writePipe(void* end, std::uint8_t* bytes, int count)
{
    return static_cast<PipeEnd*>(end)->write(bytes, count);
}

Pipe contextFor(std::unique_ptr<PipeEnd> end, bool writes)
{
    auto* const buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
    AVIOContext* const context = buffer
        ? avio_alloc_context(buffer, kBufferBytes, writes, end.get(), readPipe, writePipe, nullptr)
        : nullptr;
    if (!context) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    context->seekable = 0;
    (void)end.release(); // ClosePipe has it from now on
    return Pipe(context);
}

} // namespace

void ClosePipe::operator()(AVIOContext* pipe) const
{
    const std::unique_ptr<PipeEnd> end(&endOf(*pipe));
    av_freep(&pipe->buffer);
    avio_context_free(&pipe);
}

bool isPipe(const fs::path& path)
{
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status)
        && !fs::is_block_file(status);
}

Pipe openPipeToRead(const fs::path& path)
{
    const bool standard = path == "/dev/stdin"; // a socket cannot be opened by that name
    const std::string name = standard ? "standard input" : path.string();
    const int file =
        standard ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        const int error = errno;
        stopIfAsked(); // while no other program had opened the pipe
        throw ToolError(ExitCode::unreadable, "cannot read " + name + ": " + std::strerror(error));
    }
    auto end = std::make_unique<PipeEnd>(file);
    if (isatty(file))
        throw ToolError(ExitCode::usage, name + " is a terminal; a clip comes from a file or a pipe");
    return contextFor(std::move(end), false);
}

void abandon(const AVIOContext& pipe) { endOf(pipe).abandon(); }

Pipe openPipeToWrite(const fs::path& name)
{
    const bool standard = isStandardStream(name);
    const int file =
        standard ? fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0) : open(name.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0) {
        const int error = errno;
        stopIfAsked();
        throwCannotWrite(standard ? "standard output" : name, error);
    }
    auto end = std::make_unique<PipeEnd>(file);
    if (isatty(file))
        throw ToolError(ExitCode::usage,
            (standard ? "standard output" : name.string()) + " is a terminal; frames go to a file or a pipe");
    if (standard) {
        std::fflush(stdout);
        dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    end->ignoreClosedReader();
    return contextFor(std::move(end), true);
}

void stopForClosedReader(const AVIOContext& pipe, const fs::path& name)
{
    if (endOf(pipe).wasIgnoredBefore())
        throwCannotWrite(name, EPIPE);
    stopBy(SIGPIPE);
}

} // namespace tool::media
