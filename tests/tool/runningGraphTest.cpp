// Graphs while they run: pictures of the caller, jumps in time, values that are set from frame to frame.
#include "host/GraphError.h"
#include "support/GraphFixture.h"
#include "support/GuardedFrame.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using host::EffectGraph;
using host::FrameTime;
using host::GraphError;
using host::GraphFault;
using host::ParameterValue;
using test::Bytes;
using test::copyOf;
using test::frameAt;
using test::parsed;
using testing::HasSubstr;

using Numbers = std::vector<double>;

class RunningGraphs : public test::GraphFixture {
protected:
    // The graph's picture of a frame in an image of ours that held noise.
    Bytes showInto(EffectGraph& graph, FrameTime time, unsigned seed = 77)
    {
        test::GuardedFrame target(kWidth, kHeight);
        target.fillWithNoise(seed);
        graph.runInto(target.image(), time);
        EXPECT_TRUE(target.guardsIntact());
        return target.bytes();
    }
};

const char* const kGraphs[] = {
    R"({"effect": "am-negative"})",
    R"({"effect": "am-negative", "mix": 0})",
    R"({"effect": "am-negative", "mix": 0.5})",
    R"({"effect": "am-negative", "mix": 0.5, "mask": {"node": "source-2", "feather": 3}})",
    R"({"id": "a", "effect": "blur"}, {"effect": "push", "inputs": ["a", "source-2"]})",
    R"({"effect": "twirl", "inputs": ["source", "source-2"]})",
    R"({"effect": "echo"}, {"effect": "water-ripple"})",
    R"({"effect": "blank"})",
};

TEST_F(RunningGraphs, DrawIntoPicturesOfTheCallerWhatTheyDrawIntoTheirOwn)
{
    for (const std::string nodes : kGraphs) {
        SCOPED_TRACE(nodes);
        test::restartSharedState();
        EffectGraph own = graphOf(parsed(nodes));
        std::vector<Bytes> expected;
        for (int frame = 0; frame < 8; ++frame) {
            paint(unsigned(frame));
            expected.push_back(copyOf(own.run(frameAt(frame * 5))));
        }
        test::restartSharedState();
        EffectGraph graph = graphOf(parsed(nodes));
        for (int frame = 0; frame < 8; ++frame) {
            paint(unsigned(frame));
            const auto time = frameAt(frame * 5);
            const Bytes shown =
                frame % 3 == 2 ? copyOf(graph.run(time)) : showInto(graph, time, unsigned(frame));
            EXPECT_TRUE(shown == expected[std::size_t(frame)]) << frame;
        }
    }
}

TEST_F(RunningGraphs, DrawIntoTheirSourceAsIntoAnyPicture)
{
    for (const std::string nodes : {kGraphs[0], kGraphs[2], kGraphs[3], kGraphs[4], kGraphs[5],
             R"({"effect": "light-room", "parameters": {"u_exposure": 30, "dehaze": 40}})"}) {
        paint(1);
        const Bytes expected = show(nodes, frameAt(10));
        EffectGraph graph = graphOf(parsed(nodes));
        graph.runInto(first().handle(), frameAt(10));
        EXPECT_EQ(firstBytes(), expected) << nodes;
    }
}

// Effects that work row by row are drawn together where nobody sees the pictures between them.
TEST_F(RunningGraphs, DrawChainsOfRowsAsNodeAfterNode)
{
    const std::string fading =
        R"("mix": {"keyframes": [{"frame": 0, "value": 1}, {"frame": 10, "value": 1}, {"frame": 20, "value": 0.3}, {"frame": 30, "value": 1}]})";
    const std::string binary =
        R"("effect": "am-binary", "parameters": {"Percent": {"keyframes": [{"frame": 0, "value": 20}, {"frame": 40, "value": 60}]}})";
    const std::string simple = R"({"id": "a", "effect": "hue-shift"}, {"id": "b", "effect": "balance"}, )";
    for (const std::string& nodes :
        {
            simple + R"({"effect": "am-warm"})",
            simple + "{" + binary + R"(, "id": "c"}, {"effect": "am-warm"})",
            simple + "{" + binary + R"(, "id": "c", )" + fading + R"(}, {"effect": "am-warm"})",
            simple + R"({"id": "c", "effect": "am-warm", "mask": {"node": "a"}}, {"effect": "am-negative"})",
            simple + R"({"id": "c", "effect": "am-warm"}, {"effect": "push", "inputs": ["b", "c"]})",
            simple + R"({"id": "c", "effect": "am-warm"}, {"effect": "push", "inputs": ["source-2", "c"]})",
            simple
                + R"({"id": "c", "effect": "blur"}, {"id": "d", "effect": "am-warm"}, {"effect": "am-cold"})",
        }) {
        SCOPED_TRACE(nodes);
        EffectGraph single = graphOf(parsed(nodes));
        EffectGraph graph = graphOf(parsed(nodes));
        for (int frame = 0; frame < 40; frame += 5) {
            paint(unsigned(frame));
            std::vector<std::string> unchanged; // for which every picture is drawn by itself
            const Bytes expected = copyOf(single.run(frameAt(frame), &unchanged));
            if (frame == 25)
                graph.reset();
            EXPECT_TRUE(copyOf(graph.run(frameAt(frame))) == expected) << frame;
            EXPECT_TRUE(showInto(graph, frameAt(frame)) == expected) << frame;
            unchanged.clear();
            if (frame % 10 == 0) {
                EXPECT_TRUE(copyOf(graph.run(frameAt(frame), &unchanged)) == expected) << frame;
            }
            graph.runInto(first().handle(), frameAt(frame));
            EXPECT_TRUE(firstBytes() == expected) << "into the source, frame " << frame;
        }
    }
}

TEST_F(RunningGraphs, RefuseATargetOfAnotherSize)
{
    EffectGraph graph = graphOf(parsed(kGraphs[0]));
    const host::Image other(kWidth + 1, kHeight);
    EXPECT_THROW(graph.runInto(other.handle(), {}), GraphError);
}

// Haze removal works in place on the picture that it is given.
TEST_F(RunningGraphs, ShowAllUsersOfAPictureTheSame)
{
    const std::string hazy = R"("effect": "light-room", "parameters": {"dehaze": 80})";
    for (const std::string feeds : {"source", "bin"}) {
        SCOPED_TRACE(feeds);
        const std::string bin = R"({"id": "bin", "effect": "am-flip-lr", "inputs": ["source"]}, )";
        const auto alone = [&](const std::string& node) {
            return show(bin + "{" + node + R"(, "inputs": [")" + feeds + "\"]}");
        };
        const Bytes before = firstBytes();
        const Bytes cleared = alone(hazy);
        const Bytes negative = alone(R"("effect": "am-negative")");
        const Bytes both = show(bin + R"({"id": "h", )" + hazy + R"(, "inputs": [")" + feeds
                + R"("]}, {"id": "n", "effect": "am-negative", "inputs": [")" + feeds
                + R"("]}, {"effect": "push", "inputs": ["h", "n"]})",
            {.seconds = 2, .total = 2});
        EXPECT_NE(cleared, alone(R"("effect": "light-room")")) << "nothing was cleared";
        EXPECT_EQ(both, negative) << "its second picture at the end";
        EXPECT_EQ(firstBytes(), before) << "the caller's picture";
        EffectGraph graph = graphOf(parsed("{" + hazy + "}"));
        const Bytes once = copyOf(graph.run({}));
        EXPECT_EQ(copyOf(graph.run({})), once) << "nothing is cleared twice";
    }
}

TEST_F(RunningGraphs, GoOnAsFreshOnesAfterAReset)
{
    const std::string keyframes =
        R"("parameters": {"Percent": {"keyframes": [{"frame": 0, "value": 20}, {"frame": 40, "value": 60}]}})";
    for (const std::string& nodes :
        {std::string(R"({"effect": "echo"})"), std::string(R"({"effect": "vertigo", "mix": 0.5})"),
            std::string(R"({"effect": "water-ripple"})"), std::string(R"({"effect": "delay-grab"})"),
            R"({"effect": "am-binary", )" + keyframes
                + R"(}, {"effect": "twirl", "inputs": ["am-binary", "source-2"]})"}) {
        SCOPED_TRACE(nodes);
        const auto frames = [&](EffectGraph& graph) {
            test::restartSharedState();
            std::vector<Bytes> shown;
            for (int frame = 5; frame < 12; ++frame) {
                paint(unsigned(frame));
                shown.push_back(copyOf(graph.run(frameAt(frame))));
            }
            return shown;
        };
        EffectGraph fresh = graphOf(parsed(nodes));
        const auto expected = frames(fresh);
        EffectGraph graph = graphOf(parsed(nodes));
        for (int frame = 0; frame < 9; ++frame) {
            paint(unsigned(100 + frame));
            graph.run(frameAt(20 + frame));
        }
        graph.reset();
        EXPECT_TRUE(frames(graph) == expected);
    }
}

TEST_F(RunningGraphs, TakeValuesFromFrameToFrame)
{
    const auto binary = [&](int percent) {
        return show(R"({"effect": "am-binary", "parameters": {"Percent": )" + std::to_string(percent) + "}}");
    };
    EffectGraph graph = graphOf(parsed(R"({"id": "n", "effect": "am-binary", "parameters": {"Percent":
        {"keyframes": [{"frame": 0, "value": 20}, {"frame": 40, "value": 60}]}}})"));
    EXPECT_EQ(graph.parameter("n", "Percent", frameAt(20)), ParameterValue(Numbers{40}));
    EXPECT_EQ(copyOf(graph.run(frameAt(20))), binary(40));
    graph.setParameter("n", "Percent", Numbers{25});
    EXPECT_EQ(graph.parameter("", "threshold", frameAt(30)), ParameterValue(Numbers{25})) << "by title";
    EXPECT_EQ(copyOf(graph.run(frameAt(30))), binary(25));
    graph.setParameter("", "threshold", Numbers{70});
    EXPECT_EQ(copyOf(graph.run(frameAt(30))), binary(70));
    graph.reset();
    EXPECT_EQ(copyOf(graph.run(frameAt(30))), binary(70)) << "a reset keeps it";

    EXPECT_EQ(graph.mix("", {}), 1);
    graph.setMix("n", 0);
    EXPECT_EQ(copyOf(graph.run(frameAt(30))), firstBytes());
    graph.setMix("n", 3);
    EXPECT_EQ(graph.mix("", {}), 1);
    EXPECT_EQ(copyOf(graph.run(frameAt(30))), binary(70));
}

TEST_F(RunningGraphs, TellWhatNobodySet)
{
    EffectGraph graph = graphOf(parsed(R"({"effect": "highlight"})"));
    EXPECT_EQ(graph.parameter("", "iMouse", {}), std::nullopt);
    graph.setParameter("", "iMouse", Numbers{3, 4});
    EXPECT_EQ(graph.parameter("", "iMouse", {}), ParameterValue(Numbers{3, 4}));
    EXPECT_EQ(graph.parameter("", kEffectEnable, {}), ParameterValue(Numbers{1}));
    EffectGraph lights = graphOf(parsed(R"({"effect": "light-room"})"));
    EXPECT_EQ(lights.parameter("", "u_resolution", {}), ParameterValue(Numbers{kWidth, kHeight}));
    EXPECT_EQ(lights.parameter("", "clarity", {}), ParameterValue(Numbers{0}));
    EffectGraph table = graphOf(parsed(R"({"effect": "cube-lut"})"));
    EXPECT_EQ(table.parameter("", "CubeLutFile", {}), std::nullopt);
}

TEST_F(RunningGraphs, RefuseValuesAndKeepWhatTheyHad)
{
    EffectGraph graph = graphOf(parsed(R"({"id": "bin", "effect": "am-binary", "parameters": {"Percent": 40}},
        {"id": "lut", "effect": "cube-lut"})"));
    const Bytes before = copyOf(graph.run({}));
    const auto errorOf = [&](const char* node, const char* name, const ParameterValue& value) {
        try {
            graph.setParameter(node, name, value);
        } catch (const GraphError& error) {
            return std::pair{error.fault(), std::string(error.what())};
        }
        return std::pair{GraphFault::content, std::string("accepted")};
    };
    const auto refused = [](GraphFault fault, const char* text) {
        return testing::Pair(fault, HasSubstr(text));
    };
    EXPECT_THAT(errorOf("", "Percent", Numbers{1}), refused(GraphFault::content, "no node \"\""));
    EXPECT_THAT(errorOf("bim", "Percent", Numbers{1}),
        refused(GraphFault::content, R"(no node "bim" runs in the graph; did you mean "bin"?)"));
    EXPECT_THAT(errorOf("bin", "Prcent", Numbers{1}),
        refused(GraphFault::content, R"(has no parameter "Prcent"; did you mean "Percent"?)"));
    EXPECT_THAT(errorOf("bin", "Percent", Numbers{1.5}),
        refused(GraphFault::content, "effect bin: parameter Percent takes a whole number, not 1.5"));
    EXPECT_THAT(errorOf("bin", "Percent", Numbers{1, 2}), refused(GraphFault::content, "not 2"));
    EXPECT_THAT(errorOf("bin", "Percent", "much"), refused(GraphFault::content, "not \"much\""));
    EXPECT_THAT(errorOf("lut", "CubeLutFile", "/nowhere/x.cube"),
        refused(GraphFault::missingFile, "no such file: /nowhere/x.cube"));
    EXPECT_THROW(graph.setMix("bin", std::numeric_limits<double>::quiet_NaN()), GraphError);
    EXPECT_EQ(graph.parameter("bin", "Percent", {}), ParameterValue(Numbers{40}));
    EXPECT_EQ(graph.mix("bin", {}), 1);
    EXPECT_EQ(copyOf(graph.run({})), before);
}

} // namespace
