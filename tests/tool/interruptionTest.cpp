// Signals to work that does not check for them.
#include "effectengine/interruption.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace {

using namespace std::chrono_literals;

/// How a child ended that gets the signal while it works, as wait() tells.
template <class Work> int statusAfter(int signal, Work work)
{
    const pid_t child = fork();
    if (child == 0) {
        tool::interruptibly([&] {
            raise(signal);
            work();
        });
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST(Interruption, WorkThatNeverAsksEndsWithinASecondAndLeavesNoPartialFile)
{
    const test::TemporaryDirectory files;
    files.write("whole", "");
    const std::string partial = files.path() + "partial";
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        files.write("partial", "");
        const auto begin = std::chrono::steady_clock::now();
        const int status = statusAfter(signal, [&] {
            const tool::Leftover whole(files.path() + "gone already");
            const tool::Leftover leftover(partial);
            for (;;)
                std::this_thread::sleep_for(10ms);
        });
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 3s);
        EXPECT_FALSE(std::filesystem::exists(partial));
        EXPECT_TRUE(std::filesystem::exists(files.path() + "whole"));
    }
}

TEST(Interruption, PressingAgainPutsNothingOff)
{
    const auto begin = std::chrono::steady_clock::now();
    const int status = statusAfter(SIGINT, [] {
        for (;;) {
            std::this_thread::sleep_for(50ms);
            raise(SIGINT);
        }
    });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 3s);
}

TEST(Interruption, WorkThatAsksUnwinds)
{
    const test::TemporaryDirectory files;
    files.write("kept", "");
    const int status = statusAfter(SIGTERM, [&] {
        const tool::Leftover leftover(files.path() + "kept");
        tool::stopIfAsked();
    });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_TRUE(std::filesystem::exists(files.path() + "kept"))
        << "its owner removes it, or has given it a name";
}

} // namespace
