// Silence for libraries that print what they think of a damaged file.
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace tool {

/// While it lives, what this process writes to standard error is lost: what is to be said about a picture
/// stands in one line of the tool's.
class QuietStderr {
public:
    QuietStderr() : own_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
    {
        const int nowhere = own_ < 0 ? -1 : open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (nowhere >= 0) {
            dup2(nowhere, STDERR_FILENO);
            close(nowhere);
        }
    }
    QuietStderr(const QuietStderr&) = delete;
    QuietStderr& operator=(const QuietStderr&) = delete;
    ~QuietStderr()
    {
        if (own_ >= 0) {
            dup2(own_, STDERR_FILENO);
            close(own_);
        }
    }

private:
    int own_;
};

} // namespace tool
