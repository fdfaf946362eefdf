// The table, and what the node does before any transition draws.
#include "effects/transitions/transitionTable.h"
#include "transitions/TransitionFixture.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <set>

namespace {

using namespace std::string_literals;
using testing::Each;

class TransitionNode : public test::TransitionFixture { };

TEST_F(TransitionNode, TheTableHoldsDifferentTransitionsAtThePlacesThatHostsKnow)
{
    std::set<std::string> guids;
    std::set<transitions::TransitionFunc*> functions;
    for (const transitions::TransitionTableEntry& entry : transitions::transitionTable) {
        guids.insert(entry.guid);
        functions.insert(entry.algorithm);
    }
    ASSERT_GE(transitions::transitionTable.size(), 63u);
    EXPECT_EQ(guids.size(), transitions::transitionTable.size());
    EXPECT_EQ(functions.size(), transitions::transitionTable.size());
    EXPECT_STREQ(transitions::transitionTable[36].name, "Twrl");
    EXPECT_STREQ(transitions::transitionTable[62].guid, "0FBDABAD-9BC5-42e7-9596-EC20AC763806");
}

TEST_F(TransitionNode, GuidsMatchByteByByteAlsoTheOneThatIsADigitShort)
{
    const std::string first = "4C481959-DA74-459b-B538-D0590BFB2CE";
    EXPECT_TRUE(transitions::createTransition(4, 4, first.c_str()));
    for (const std::string& other :
        {first + "0", first.substr(1), "4c481959-da74-459b-b538-d0590bfb2ce"s, ""s})
        EXPECT_FALSE(transitions::createTransition(4, 4, other.c_str())) << other;

    transitions::transitionMgrInit();
    for (const transitions::TransitionTableEntry& entry : transitions::transitionTable) {
        const auto node = transitions::createTransition(5, 3, entry.guid);
        ASSERT_TRUE(node) << entry.name;
        EXPECT_EQ(node->getInputCount(), 2u);
        EXPECT_EQ(node->width(), 5u);
    }
}

TEST_F(TransitionNode, ToolsSeeTheTableRowsWithTheirFacts)
{
    const auto infos = transitions::transitionInfos();
    ASSERT_EQ(infos.size(), transitions::transitionTable.size());
    std::set<std::string> random;
    for (std::size_t i = 0; i < infos.size(); ++i) {
        EXPECT_EQ(infos[i].guid, transitions::transitionTable[i].guid);
        if (infos[i].random)
            random.insert(infos[i].name);
    }
    EXPECT_EQ(random, (std::set{"dissolve-2"s, "h-random-line"s, "v-random-line"s, "wind"s}));
}

TEST_F(TransitionNode, WithoutBothInputsInItsSizeTheOutputStays)
{
    open("push", 4, 2);
    outFrame().fill({1, 2, 3, 4});
    test::GuardedFrame small(3, 2);
    for (const int index : {0, 1}) {
        SetInputImage(filter().handle(), small.image(), index);
        EXPECT_THAT(show(0.5f).row(0), Each(pixels::Bgra{1, 2, 3, 4})) << index;
        SetInputImage(filter().handle(), index == 0 ? fromFrame().image() : toFrame().image(), index);
    }
    EXPECT_EQ(picture(0.5f), (std::vector{"##.."s, "##.."s}));

    outFrame().fill({1, 2, 3, 4});
    host::Filter alone(findEffect("push")->guid, 4, 2);
    SetInputImage(alone.handle(), fromFrame().image(), 0);
    EXPECT_EQ(DoFilterEx(alone.handle(), outFrame().image()), 0u);
    EXPECT_THAT(outFrame().view().row(1), Each(pixels::Bgra{1, 2, 3, 4}));
}

TEST_F(TransitionNode, TimeBeyondTheEndsCountsAsTheNearerEnd)
{
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    open("erase-slide", 4, 1);
    for (const float time : {-1.0f, -kInfinity, kNan})
        EXPECT_EQ(picture(time), (std::vector{"...."s})) << time;
    for (const float time : {1.5f, kInfinity})
        EXPECT_EQ(picture(time), (std::vector{"####"s})) << time;
    for (const float total : {0.0f, -2.0f, kNan, kInfinity})
        EXPECT_EQ(picture(1, total), (std::vector{"...."s})) << total;
    EXPECT_EQ(picture(2e38f, 2e38f), (std::vector{"####"s}));
    EXPECT_EQ(picture(1e-45f, 1e-45f), (std::vector{"####"s}));
}

} // namespace
