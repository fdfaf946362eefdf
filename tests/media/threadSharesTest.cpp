// Threads in proportion to cores and pictures.
#include "effectengine/media/threadShares.h"

#include <gtest/gtest.h>

namespace {

using namespace tool::media;

TEST(ThreadShares, LeaveNoCoreIdleAndNoMachineWithoutMemory)
{
    for (const unsigned cores : {1u, 2u, 3u, 16u, 192u}) {
        EXPECT_EQ(pictureEncoders(cores, {1280, 720}), std::min(cores, 72u));
        EXPECT_LE(pictureEncoders(cores, {4096, 4096}), 4u);
        EXPECT_EQ(pictureEncoders(cores, {30000, 30000}), 1u);
        EXPECT_LE(decoderThreads(cores), 8);
    }
    EXPECT_EQ(decoderThreads(1), 1);
    EXPECT_EQ(decoderThreads(2), 2);
    EXPECT_EQ(decoderThreads(16), 8);
}

} // namespace
