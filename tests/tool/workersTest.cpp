// Pieces of work in processes that die.
#include "effectengine/Workers.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

namespace {

using tool::Workers;

std::string nameOf(std::size_t piece) { return "piece" + std::to_string(piece); }

Workers::Result runApart(const Workers::MakeWork& makeWork)
{
    tool::Progress quiet(tool::ProgressKind::none, "pieces", 0);
    return Workers(5, nameOf).runApart(2, makeWork, quiet);
}

TEST(Workers, LoseNoPieceWhenProcessesDieBeforeTheyBegin)
{
    testing::internal::CaptureStderr();
    const Workers::Result result = runApart([]() -> Workers::Work {
        kill(getpid(), SIGKILL);
        return {};
    });
    EXPECT_EQ(result.done, 0u);
    ASSERT_EQ(result.failures.size(), 5u);
    EXPECT_EQ(result.code(), tool::ExitCode::internal);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("piece4: the process that worked on it"),
        std::string::npos);
}

TEST(Workers, DoThePiecesThatADeadProcessLeft)
{
    testing::internal::CaptureStderr();
    const Workers::Result result = runApart([]() -> Workers::Work {
        return [](std::size_t piece) {
            if (piece == 0 || piece == 3)
                kill(getpid(), SIGKILL);
            return Workers::Piece::done;
        };
    });
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(result.done, 3u);
    ASSERT_EQ(result.failures.size(), 2u);
    EXPECT_EQ(result.failures[0].piece, 0u);
    EXPECT_EQ(result.failures[1].piece, 3u);
}

} // namespace
