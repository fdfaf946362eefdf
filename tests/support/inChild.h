// Cases that need a process of their own.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace test {

/// Runs body(), which answers whether all went well, in a forked child that ends right after it.
template <class Body> bool inChild(Body body)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(body() ? 0 : 1);
    int status = 1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace test
