// Graphs of effects from text: errors, values per frame, and how often a node runs.
#include "host/EffectGraph.h"
#include "host/GraphError.h"
#include "host/names.h"
#include "support/EngineFixture.h"
#include "support/paths.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <utility>

namespace {

namespace fs = std::filesystem;
using host::EffectGraph;
using host::FrameTime;
using host::GraphDescription;
using host::GraphError;
using host::GraphFault;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr unsigned kWidth = 33;
constexpr unsigned kHeight = 17;

GraphDescription parsed(const std::string& nodes, const std::string& more = "")
{
    return host::parseGraph(
        R"({"effectengine": 1, "nodes": [)" + nodes + "]" + more + "}", "look.json", "/looks");
}

GraphDescription chain(std::initializer_list<const char*> words)
{
    GraphDescription graph;
    for (const std::string_view word : words) {
        if (word.find('=') == std::string_view::npos)
            graph.append(word);
        else
            graph.setParameter(word);
    }
    graph.finish();
    return graph;
}

std::vector<unsigned char> copyOf(CEffectImage* image)
{
    const auto bytes = host::bytesOf(image);
    return {bytes.begin(), bytes.end()};
}

class Graphs : public test::EngineWithoutGpu {
protected:
    host::Image& paint(host::Image& image, unsigned seed)
    {
        std::mt19937 random(seed);
        std::ranges::generate(image.bytes(), [&] { return (unsigned char)random(); });
        return image;
    }
    std::vector<unsigned char> show(const GraphDescription& description, FrameTime time = {})
    {
        EffectGraph graph(description, kWidth, kHeight);
        graph.setSource(paint(first_, 1), 0);
        graph.setSource(paint(second_, 2), 1);
        return copyOf(graph.run(time));
    }

    void setAlpha(host::Image& image, unsigned char value)
    {
        for (std::size_t i = 3; i < image.bytes().size(); i += 4)
            image.bytes()[i] = value;
    }

    host::Image first_{kWidth, kHeight};
    host::Image second_{kWidth, kHeight};
};

TEST_F(Graphs, FilesAndCommandLinesThatMeanTheSameGiveTheSamePicture)
{
    const auto typed = show(chain({"am-binary", "Percent=30", "hue-shift", "am-flip-lr"}));
    EXPECT_EQ(typed, show(parsed(R"({"effect": "am-binary", "parameters": {"Percent": 30}},
                       {"effect": "hue-shift"}, {"effect": "am-flip-lr"})")));
    EXPECT_EQ(typed,
        show(parsed(R"({"id": "flip", "effect": "am-flip-lr", "inputs": ["hue"]},
                       {"id": "bin", "effect": "040AC214-A380-4129-8F48-9B9623CDF3F4", "inputs": ["source"],
                        "parameters": {"Percent": 30.0}},
                       {"id": "hue", "effect": "hue-shift", "inputs": ["bin"]})",
            R"(, "output": "flip")")))
        << "in any order";
    EXPECT_NE(typed, show(chain({"am-binary", "Percent=31", "hue-shift", "am-flip-lr"})));
    EXPECT_EQ(show(chain({"delay-grab", "Mode=by row"})), show(chain({"delay-grab", "Mode=3"})));
}

TEST_F(Graphs, NamesAndTitlesInAnySpellingMeanTheSame)
{
    const auto exact = chain({"tv-wall", "SpliteSize=4"});
    for (const char* const effect : {"TV Wall", "tv_wall", "TVWALL"}) {
        for (const char* const parameter : {"Split Size=4", "split-size=4", "SPLITESIZE=4"})
            EXPECT_EQ(host::graphText(chain({effect, parameter})), host::graphText(exact))
                << effect << parameter;
    }
    EXPECT_THAT(host::graphText(exact), HasSubstr("\"SpliteSize\" : 4"));
    const char* const moving = R"({"keyframes": [{"time": 0, "value": 1}, {"time": 5, "value": 9}]}}})";
    EXPECT_EQ(show(parsed(R"({"effect": "tv-wall", "parameters": {"SpliteSize": )" + std::string(moving))),
        show(parsed(R"({"effect": "TV Wall", "parameters": {"split size": )" + std::string(moving))));
    EXPECT_EQ(host::graphText(chain({"tv-wall", "Split Size=2", "SpliteSize=4"})), host::graphText(exact))
        << "the later value replaces the earlier one";
}

TEST(Names, AnExactNameComesFirstAndAWordForSeveralIsRefused)
{
    const std::vector<host::Named> all{
        {"radius", "Reach"}, {"Radius", "Radius"}, {"size", "Reach"}, {"--", "\u00c4"}};
    EXPECT_EQ(host::meant(all, "radius"), 0u);
    EXPECT_EQ(host::meant(all, "Radius"), 1u);
    EXPECT_EQ(host::meant(all, "S-I_Z E"), 2u);
    EXPECT_EQ(host::meant(all, "\u00c4"), 3u);
    for (const char* const nobody : {"", " ", "-", "radii", "\u00e4"})
        EXPECT_EQ(host::meant(all, nobody), std::nullopt) << nobody;
    for (const auto& [word, message] :
        {std::pair{"RADIUS", R"("RADIUS" can mean radius (Reach) or Radius (Radius))"},
            std::pair{"reach", R"("reach" can mean radius (Reach) or size (Reach))"}}) {
        try {
            host::meant(all, word);
            ADD_FAILURE() << word;
        } catch (const GraphError& error) {
            EXPECT_STREQ(error.what(), message);
        }
    }
}

TEST_F(Graphs, ANodeWithTwoUsersRunsOnceAFrame)
{
    const auto shared = parsed(R"({"id": "late", "effect": "delay-grab", "parameters": {"Mode": 2}},
        {"effect": "push", "inputs": ["late", "late"]})");
    EffectGraph graph(shared, kWidth, kHeight);
    EffectGraph alone(chain({"delay-grab", "Mode=2"}), kWidth, kHeight);
    graph.setSource(first_);
    alone.setSource(first_);
    for (unsigned frame = 0; frame < 12; ++frame) {
        paint(first_, frame);
        const FrameTime end{.seconds = 5, .total = 5};
        ASSERT_EQ(copyOf(graph.run(end)), copyOf(alone.run(end))) << "frame " << frame;
    }
}

TEST_F(Graphs, AWindowHoldsATransitionAtItsEnds)
{
    const auto graph =
        parsed(R"({"effect": "push", "inputs": ["source", "source-2"], "start": 2, "duration": 1})");
    EXPECT_EQ(graph.sources(), 2u);
    const auto from = copyOf(paint(first_, 1).handle());
    const auto to = copyOf(paint(second_, 2).handle());
    for (const double before : {0.0, 1.9, 2.0})
        EXPECT_EQ(show(graph, {.seconds = before, .total = 10}), from) << before;
    for (const double after : {3.0, 3.1, 10.0})
        EXPECT_EQ(show(graph, {.seconds = after, .total = 10}), to) << after;
    EXPECT_EQ(
        show(graph, {.seconds = 2.5, .total = 10}), show(chain({"push"}), {.seconds = 2.5, .total = 5}));
}

// The library's own bytes lose alpha in these transitions.
TEST_F(Graphs, OpaquePicturesStayOpaqueOnTheirWayThroughTransitions)
{
    constexpr FrameTime kMiddle{.seconds = 2.5};
    const auto run = [&](const GraphDescription& description) {
        EffectGraph graph(description, kWidth, kHeight);
        graph.setSource(first_, 0);
        graph.setSource(second_, 1);
        return copyOf(graph.run(kMiddle));
    };
    paint(first_, 1);
    paint(second_, 2);
    for (const char* const name : {"zoom", "row-split-2", "turn", "twirl", "pixelate", "fade", "erase",
             "linear-wipe", "skew-right-split"}) {
        SCOPED_TRACE(name);
        setAlpha(first_, 255);
        setAlpha(second_, 255);
        host::Filter filter(host::effectNamed(name).guid, kWidth, kHeight);
        filter.setInput(first_, 0);
        filter.setInput(second_, 1);
        filter.set(kEffectCurrentTime, float(kMiddle.seconds));
        auto expected = copyOf(filter.run());
        bool losesAlpha = false;
        for (std::size_t i = 3; i < expected.size(); i += 4)
            losesAlpha |= std::exchange(expected[i], 255) != 255;
        EXPECT_TRUE(losesAlpha) << "nothing to put right";
        EXPECT_EQ(run(chain({name})), expected);

        second_.bytes()[3] = 254;
        const auto own = copyOf(filter.run());
        EXPECT_EQ(run(chain({name})), own) << "transparency that came in is the effect's to judge";
    }
}

// Unset, the white balance of "light-room" counts as 0 and turns everything blue.
TEST_F(Graphs, ValuesThatHostsAreToStoreAreStoredUnlessGiven)
{
    const auto plain = copyOf(paint(first_, 1).handle());
    const auto called = chain({"light-room"});
    EXPECT_EQ(show(called), plain);
    EXPECT_THAT(host::graphText(called), HasSubstr("\"u_temperature\" : 11500"));
    EXPECT_EQ(show(parsed(R"({"effect": "light-room"})")), plain);
    const auto cool = chain({"light-room", "u_temperature=9000"});
    EXPECT_NE(show(cool), plain);
    EXPECT_THAT(host::graphText(cool), Not(HasSubstr("11500")));
    EXPECT_NE(show(parsed(R"({"effect": "light-room", "parameters": {"u_temperature": {"keyframes": [
        {"time": 0, "value": 9000}, {"time": 5, "value": 8000}]}}})")),
        plain);

    // A parameter given after a preset replaces the preset's value.
    GraphDescription preset = called;
    preset.setParameter("u_temperature=9000");
    preset.finish();
    EXPECT_EQ(host::graphText(preset), host::graphText(cool));
}

TEST_F(Graphs, NodesThatGiveTheirInputAreNamed)
{
    EffectGraph graph(
        chain({"equalize", "kex_effect_enable=0", "am-negative", "highlight", "Radius=2"}), kWidth, kHeight);
    graph.setSource(paint(first_, 1));
    std::vector<std::string> unchanged;
    graph.run({}, &unchanged);
    EXPECT_THAT(unchanged, ElementsAre("equalize", "highlight"));
}

TEST_F(Graphs, KeyframesMoveParameters)
{
    const auto graph = parsed(R"({"effect": "am-binary", "parameters": {"Percent": {"keyframes": [
        {"time": 1, "value": 20}, {"time": 3, "value": 60}]}}})");
    EffectGraph moving(graph, kWidth, kHeight);
    moving.setSource(paint(first_, 1));
    for (const auto& [seconds, percent] : {std::pair{0.0, "Percent=20"}, {2.0, "Percent=40"},
             {1.26, "Percent=25"}, {9.0, "Percent=60"}, {2.0, "Percent=40"}})
        EXPECT_EQ(copyOf(moving.run({.seconds = seconds})), show(chain({"am-binary", percent}))) << seconds;
}

TEST_F(Graphs, ParametersFollowTheSound)
{
    const auto graph = host::parseGraph(R"({"effectengine": 2, "nodes": [{"effect": "am-binary",
        "parameters": {"Percent": {"audio": {"band": "bass", "to": [20, 60]}}}}]})",
        "look.json", "");
    EffectGraph moving(graph, kWidth, kHeight);
    moving.setSource(paint(first_, 1));
    EXPECT_EQ(copyOf(moving.run({.seconds = 1})), show(chain({"am-binary", "Percent=20"})));
    moving.setCurve(graph.bands().at(0), std::vector<float>{0, 0.5F, 1}, 1);
    for (const auto& [seconds, percent] : {std::pair{1.0, "Percent=40"}, {2.0, "Percent=60"}})
        EXPECT_EQ(copyOf(moving.run({.seconds = seconds})), show(chain({"am-binary", percent}))) << seconds;
}

TEST(ParameterTracks, InterpolateAndRound)
{
    const auto valueAt = [](const std::string& keyframes, FrameTime time) {
        const auto graph = parsed(
            R"({"effect": "highlight", "parameters": {"iMouse": {"keyframes": [)" + keyframes + "]}}}");
        return std::get<std::vector<double>>(graph.nodes[0].parameters[0].at(time));
    };
    const std::string linear = R"({"time": 0, "value": [0, 100]}, {"time": 4, "value": [8, 0]})";
    EXPECT_THAT(valueAt(linear, {.seconds = 1}), ElementsAre(2, 75));
    const std::string smooth =
        R"({"time": 0, "value": [0, 100], "interpolation": "smooth"}, {"time": 4, "value": [64, 0]})";
    EXPECT_THAT(valueAt(smooth, {.seconds = 1}), ElementsAre(10, 84.375));
    const std::string hold =
        R"({"frame": 10, "value": [1, 1], "interpolation": "hold"}, {"frame": 20, "value": [2, 2]})";
    EXPECT_THAT(valueAt(hold, {.seconds = 19.0 / 25}), ElementsAre(1, 1));
    EXPECT_THAT(valueAt(hold, {.seconds = 20.0 / 25}), ElementsAre(2, 2));
    const std::string percent = R"({"percent": 0, "value": [0, 0]}, {"percent": 100, "value": [10, 20]})";
    EXPECT_THAT(valueAt(percent, {.seconds = 6, .total = 12}), ElementsAre(5, 10));
}

TEST(GraphFacts, TellWhatChunksNeed)
{
    const auto two = chain({"delay-grab", "am-negative", "delay-grab"}).facts();
    EXPECT_EQ(two.historyFrames, 14);
    EXPECT_THAT(two.fromStart, IsEmpty());
    EXPECT_THAT(two.random, ElementsAre("delay-grab", "delay-grab#2"));
    EXPECT_THAT(chain({"water-ripple", "blur"}).facts().fromStart, ElementsAre("water-ripple"));
    const auto unused = parsed(R"({"id": "a", "effect": "water-ripple"}, {"id": "b", "effect": "blur",
        "inputs": ["source"]})");
    EXPECT_THAT(unused.facts().fromStart, IsEmpty()) << "what leads nowhere does not run";
    EXPECT_THAT(unused.warnings(), ElementsAre(HasSubstr("\"a\" leads nowhere")));
}

TEST(GraphFiles, SayWhatIsWrongAndWhere)
{
    const auto node = [](const std::string& members) { return R"({"id": "n", "effect": )" + members + "}"; };
    const auto percent = [&](const std::string& value) {
        return node(R"("am-binary", "parameters": {"Percent": )" + value + "}");
    };
    const std::pair<std::string, const char*> cases[] = {
        {R"({"effect": "am-negativ"})",
            R"(look.json: node 1: no effect "am-negativ"; did you mean "am-negative"?)"},
        {node(R"("am-negative", "parameter": {})"),
            R"(no member "parameter" here; did you mean "parameters"?)"},
        {percent("1.5"), "node \"n\": parameter Percent takes a whole number, not 1.5"},
        {percent("\"much\""), "takes a whole number, not \"much\""},
        {percent("NaN"), "takes a whole number, not nan"},
        {percent("1e99"), "takes a whole number, not 1e+99"},
        {percent("3000000000"), "takes a whole number"},
        {percent("[1, 2]"), "takes a whole number, not 2"},
        {percent("true"), "takes a whole number, not true"},
        {percent("null"), "takes a whole number, not null"},
        {percent(R"({"keyframes": []})"), "\"keyframes\" must be a list"},
        {percent(R"({"keyframes": [{"value": 1}]})"), "\"time\", \"frame\" or \"percent\""},
        {percent(R"({"keyframes": [{"time": 1, "value": 1}, {"frame": 2, "value": 1}]})"), "\"frame\""},
        {percent(R"({"keyframes": [{"time": 1, "value": 1}, {"time": 1, "value": 2}]})"), "do not ascend"},
        {percent(R"({"keyframes": [{"time": NaN, "value": 1}]})"), "\"time\" must be a number"},
        {percent(R"({"keyframes": [{"time": 0, "value": 1, "interpolation": "bounce"}]})"),
            R"(there is no interpolation "bounce")"},
        {node(R"("am-binary", "parameters": {"Percnt": 1})"), R"(did you mean "Percent"?)"},
        {node(R"("am-binary", "parameters": {"treshold": 1})"), R"(did you mean "Threshold"?)"},
        {node(R"("am-binary", "parameters": {"Percent": 1, "threshold": 2})"), "Percent is set twice"},
        {node(R"("highlight", "parameters": {"iMouse": [1]})"), "iMouse takes 2 numbers, not 1"},
        {node(R"("highlight", "parameters": {"Radius": -Infinity})"), "Radius takes a number"},
        {node(R"("cube-lut", "parameters": {"CubeLutFile": 7})"), "CubeLutFile takes a file, not 7"},
        {node(R"("push")"), "input 2 of 2 is not connected"},
        {node(R"("push", "inputs": ["source", ""])"), "input 2 of 2 is not connected"},
        {node(R"("blur", "inputs": ["source", "source"])"), "has 2 inputs; effect blur takes 1"},
        {node(R"("blur", "inputs": ["sorce"])"), R"(names no node "sorce"; did you mean "source"?)"},
        {node(R"("blur", "inputs": ["n"])"), "in a circle through node \"n\""},
        {R"({"id": "a", "effect": "blur", "inputs": ["b"]}, {"id": "b", "effect": "blur", "inputs": ["a"]})",
            "in a circle"},
        {node(R"("blur")") + "," + node(R"("blur")"), "two nodes are called \"n\""},
        {R"({"id": "source", "effect": "blur"})", "cannot be called \"source\""},
        {node(R"("push", "start": 1)"), "\"duration\" above 0"},
        {"", "at least one node"},
        {"5", "must be an object"},
    };
    for (const auto& [nodes, message] : cases) {
        try {
            parsed(nodes);
            ADD_FAILURE() << "accepted: " << nodes;
        } catch (const GraphError& error) {
            EXPECT_EQ(error.fault(), GraphFault::content) << nodes;
            EXPECT_THAT(error.what(), HasSubstr(message));
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
        }
    }
}

TEST(GraphFiles, ThatAreNoGraphsAreToldApart)
{
    const auto faultOf = [](const std::string& text) {
        try {
            host::parseGraph(text, "look.json", "");
        } catch (const GraphError& error) {
            return error.fault();
        }
        return GraphFault::effectFailed;
    };
    const std::string deep(5000, '[');
    for (const std::string& text : {std::string("{"), std::string(), std::string("{} {}"), deep,
             std::string(R"({"effectengine": 1, "effectengine": 1})")})
        EXPECT_EQ(faultOf(text), GraphFault::unreadable) << text.substr(0, 30);
    for (const char* const text : {"[]", "{}", R"({"effectengine": 3, "nodes": [{"effect": "blur"}]})",
             R"({"effectengine": 1, "$schema": 5, "nodes": [{"effect": "blur"}]})",
             R"({"effectengine": 1, "nodes": [{"effect": "blur"}], "output": "no"})"})
        EXPECT_EQ(faultOf(text), GraphFault::content) << text;
}

TEST_F(Graphs, AreSavedAndReadBackAsTheyWere)
{
    const fs::path directory = fs::path(test::kOutputDirectory) / "graphs";
    fs::create_directories(directory);
    const auto graph = parsed(R"({"id": "a", "effect": "am-binary", "parameters": {"Percent": {"keyframes": [
        {"frame": 0, "value": 20, "interpolation": "smooth"}, {"frame": 10, "value": 60}]}}},
        {"id": "b", "effect": "highlight", "parameters": {"iMouse": [0.1, 1e-7]}},
        {"id": "t", "effect": "push", "inputs": ["b", "source-2"], "start": 0.25, "duration": 2},
        {"id": "lut", "effect": "cube-lut", "parameters": {"CubeLutFile": "tables/x.cube"}})",
        R"(, "title": "A \"look\"", "output": "t")");
    const fs::path file = directory / "saved.json";
    std::ofstream(file) << host::graphText(graph);
    const auto again = host::loadGraph(file);
    EXPECT_EQ(host::graphText(again), host::graphText(graph));
    EXPECT_EQ(again.title, "A \"look\"");
    EXPECT_THAT(host::graphText(again), HasSubstr("\"/looks/tables/x.cube\""));
    for (const double seconds : {0.0, 0.16, 1.0})
        EXPECT_EQ(show(again, {.seconds = seconds}), show(graph, {.seconds = seconds}));
}

TEST(GraphFiles, BareNamesOfThePacksPicturesStayNames)
{
    const auto stored = [](const std::string& name) {
        return host::graphText(parsed(
            R"({"effect": "picture-wipe", "inputs": ["source", "source-2"], "parameters": {"WipePicture": ")"
            + name + R"("}})"));
    };
    EXPECT_THAT(stored("clock"), HasSubstr("\"WipePicture\" : \"clock\""));
    EXPECT_THAT(stored("own/clock.png"), HasSubstr("\"/looks/own/clock.png\""));
    EXPECT_THAT(stored("./clock"), HasSubstr("\"/looks/clock\""));
}

TEST_F(Graphs, FailClearlyWhenTheyCannotRun)
{
    const auto faultOf = [&](auto make) {
        try {
            make();
        } catch (const GraphError& error) {
            return error.fault();
        }
        return GraphFault::content;
    };
    EXPECT_EQ(faultOf([&] {
        show(chain({"cube-lut", "CubeLutFile=/nowhere/x.cube"}));
    }),
        GraphFault::missingFile);
    EffectGraph graph(chain({"push"}), kWidth, kHeight);
    graph.setSource(first_);
    EXPECT_THROW(graph.run({}), GraphError) << "the second picture is missing";
    EXPECT_THROW(graph.setSource(host::Image(kWidth, kHeight + 1), 1), GraphError);
}

} // namespace
