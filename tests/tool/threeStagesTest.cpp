// Three stages on three threads, with numbers for pieces.
#include "effectengine/media/threeStages.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

struct Counted {
    int value = 0;
};

constexpr int kPieces = 500;

TEST(ThreeStages, HandsEveryPieceOnInOrderAndLeavesOutWhatIsNotToBeConsumed)
{
    std::vector<Counted> ins(3);
    std::vector<Counted> outs(2);
    std::vector<int> consumed;
    int next = 0;
    tool::media::runThreeStages<Counted, Counted>(ins, outs,
        {.produce =
                [&](Counted& in) {
                    in.value = next;
                    return next++ < kPieces;
                },
            .process =
                [](Counted& in, Counted& out) {
                    out.value = in.value * 2;
                    return in.value % 5 != 0;
                },
            .consume = [&](Counted& out) { consumed.push_back(out.value); }});
    std::vector<int> expected;
    for (int i = 0; i < kPieces; ++i)
        if (i % 5 != 0)
            expected.push_back(i * 2);
    EXPECT_EQ(consumed, expected);
}

TEST(ThreeStages, EndsAllStagesWhenOneThrowsAndThrowsThatAgain)
{
    for (const int failing : {0, 1, 2}) {
        std::vector<Counted> ins(3);
        std::vector<Counted> outs(2);
        int counts[3] = {};
        const auto step = [&](int stage) {
            if (++counts[stage] == 20 && stage == failing)
                throw std::runtime_error("stage " + std::to_string(stage));
            return true;
        };
        try {
            tool::media::runThreeStages<Counted, Counted>(ins, outs,
                {.produce = [&](Counted&) { return step(0); },
                    .process = [&](Counted&, Counted&) { return step(1); },
                    .consume = [&](Counted&) { step(2); }});
            ADD_FAILURE() << "stage " << failing << " did not end the others";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), "stage " + std::to_string(failing));
        }
    }
}

} // namespace
