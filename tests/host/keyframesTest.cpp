// Keyframes that repeat, components with times of their own, and values that follow the sound, as files give
// them.
#include "host/GraphDescription.h"
#include "host/GraphError.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using host::FrameTime;
using host::GraphDescription;
using host::GraphError;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

GraphDescription graphOf(
    const std::string& effect, const std::string& parameter, const std::string& value, int version = 2)
{
    return host::parseGraph(R"({"effectengine": )" + std::to_string(version)
            + R"(, "nodes": [{"id": "n", "effect": ")" + effect + R"(", "parameters": {")" + parameter
            + "\": " + value + "}}]}",
        "look.json", "/looks");
}

GraphDescription opacityOf(const std::string& value) { return graphOf("highlight", "Opacity", value); }

std::vector<double> numbersAt(const GraphDescription& graph, const FrameTime& time)
{
    return std::get<std::vector<double>>(graph.nodes[0].parameters[0].at(time));
}

double at(const GraphDescription& graph, double seconds) { return numbersAt(graph, {.seconds = seconds})[0]; }

std::string messageOf(
    const std::string& effect, const std::string& parameter, const std::string& value, int version)
{
    try {
        graphOf(effect, parameter, value, version);
    } catch (const GraphError& error) {
        EXPECT_EQ(error.fault(), host::GraphFault::content) << value;
        return error.what();
    }
    return "accepted";
}

TEST(Keyframes, GoOnInTheirEases)
{
    const auto half = [](const std::string& easing) {
        return at(opacityOf(R"({"keyframes": [{"time": 1, "value": 0, "interpolation": )" + easing
                      + R"(}, {"time": 3, "value": 1}]})"),
            2);
    };
    EXPECT_EQ(half(R"("quint-in")"), 1 / 32.0);
    EXPECT_NEAR(half(R"("back-out")"), 1.0876975, 1e-12) << "past the value";
    EXPECT_EQ(half(R"({"bezier": [0, 1, 1, 1]})"), 0.875);
    EXPECT_EQ(half(R"({"bezier": [0.5, -8, 0.5, 0]})"), -2.875);
}

// The frames of a clip at 25 a second: 30 / 25 is a little less than three times 0.4 in binary.
TEST(Keyframes, RepeatFrameForFrame)
{
    const std::string steps = R"("keyframes": [{"time": 0.2, "value": 1, "interpolation": "hold"},
        {"time": 0.32, "value": 2, "interpolation": "hold"}, {"time": 0.48, "value": 3, "interpolation": "hold"},
        {"time": 0.6, "value": 4}])";
    const auto loop = opacityOf("{" + steps + R"(, "repeat": "loop"})");
    const auto twice = opacityOf("{" + steps + R"(, "repeat": "loop", "times": 2})");
    const auto once = opacityOf("{" + steps + R"(, "repeat": "none"})");
    constexpr int kPeriod[] = {1, 1, 1, 2, 2, 2, 2, 3, 3, 3};
    for (int frame = 0; frame < 100000; frame += frame < 1000 ? 1 : 997) {
        const double seconds = frame / 25.0;
        const int expected = frame < 5 ? 1 : kPeriod[(frame - 5) % 10];
        ASSERT_EQ(at(loop, seconds), expected) << "frame " << frame;
        ASSERT_EQ(at(twice, seconds), frame < 25 ? expected : 4) << "frame " << frame;
        ASSERT_EQ(at(once, seconds), frame < 15 ? expected : 4) << "frame " << frame;
    }
}

TEST(Keyframes, RunBackAndForth)
{
    const std::string ramp = R"("keyframes": [{"frame": 2, "value": 0, "interpolation": "quad-in"},
        {"frame": 6, "value": 16}], "repeat": "ping-pong")";
    const auto endless = opacityOf("{" + ramp + "}");
    const auto thrice = opacityOf("{" + ramp + R"(, "times": 3})");
    const auto twice = opacityOf("{" + ramp + R"(, "times": 2})");
    constexpr double kThereAndBack[] = {0, 1, 4, 9, 16, 9, 4, 1};
    for (int frame = 0; frame < 60; ++frame) {
        const double seconds = frame / 29.97;
        const auto shown = [&](const GraphDescription& g) {
            return numbersAt(g, {.seconds = seconds, .frameRate = 29.97})[0];
        };
        const double expected = frame < 2 ? 0 : kThereAndBack[(frame - 2) % 8];
        EXPECT_NEAR(shown(endless), expected, 1e-9) << frame;
        EXPECT_NEAR(shown(thrice), frame < 14 ? expected : 16, 1e-9) << frame;
        EXPECT_NEAR(shown(twice), frame < 10 ? expected : 0, 1e-9) << frame;
    }
    EXPECT_EQ(at(endless, 6 / 25.0), 16) << "the turning point";
    EXPECT_EQ(at(endless, 10 / 25.0), 0);
}

TEST(Keyframes, MoveComponentsOnTheirOwn)
{
    const auto graph = graphOf("highlight", "iMouse", R"({"components": [
        {"keyframes": [{"time": 0, "value": 0}, {"time": 2, "value": 10}], "repeat": "loop"}, 7.5]})");
    EXPECT_THAT(numbersAt(graph, {.seconds = 1}), ElementsAre(5, 7.5));
    EXPECT_THAT(numbersAt(graph, {.seconds = 3}), ElementsAre(5, 7.5));
    EXPECT_THAT(numbersAt(graph, {.seconds = 4}), ElementsAre(0, 7.5));
    EXPECT_FALSE(graph.nodes[0].parameters[0].constant());
    const auto units = graphOf("highlight", "iMouse", R"({"components": [
        {"keyframes": [{"percent": 0, "value": 0}, {"percent": 100, "value": 100}]},
        {"keyframes": [{"frame": 10, "value": 1, "interpolation": "hold"}, {"frame": 20, "value": 2}]}]})");
    EXPECT_THAT(numbersAt(units, {.seconds = 0.8, .total = 4}), ElementsAre(20, 2));
}

TEST(Keyframes, StayWithinWhatATypeHolds)
{
    const auto whole = graphOf("am-binary", "Percent", R"({"keyframes": [
        {"time": 0, "value": 0, "interpolation": {"bezier": [0, 1000, 1, 1000]}}, {"time": 1, "value": 2147483647}]})");
    EXPECT_EQ(at(whole, 0.5), 2147483647);
    const auto real = opacityOf(R"({"keyframes": [
        {"time": 0, "value": 0, "interpolation": {"bezier": [0, -1000, 1, -1000]}}, {"time": 1, "value": 3e38}]})");
    EXPECT_EQ(at(real, 0.5), -double(std::numeric_limits<float>::max()));
    const auto rounded = graphOf("am-binary", "Percent", R"({"keyframes": [
        {"time": 0, "value": 0, "interpolation": "quad-in"}, {"time": 1, "value": -10}]})");
    EXPECT_EQ(at(rounded, 0.5), -2) << "-2.5, half up";
}

TEST(SoundResponses, FollowTheCurveOfTheirBand)
{
    auto graph = graphOf("highlight", "iMouse", R"({"audio": {"band": "bass", "to": [[100, 0], [200, 1]]}})");
    const auto shown = [&](double seconds) { return numbersAt(graph, {.seconds = seconds}); };
    EXPECT_THAT(shown(0.1), ElementsAre(100, 0)) << "no curve yet";
    EXPECT_THAT(graph.bands(), ElementsAre(host::SoundBand{20, 250}));
    const float samples[] = {0.25F, 1, 0.5F, -3, 7, std::numeric_limits<float>::quiet_NaN(), 0.5F};
    graph.setCurve({20, 250}, samples, 10);
    EXPECT_THAT(shown(-1), ElementsAre(125, 0.25));
    EXPECT_THAT(shown(0), ElementsAre(125, 0.25));
    EXPECT_THAT(shown(0.05), ElementsAre(162.5, 0.625));
    EXPECT_THAT(shown(0.1), ElementsAre(200, 1));
    EXPECT_THAT(shown(0.3), ElementsAre(100, 0)) << "less than nothing";
    EXPECT_THAT(shown(0.4), ElementsAre(200, 1));
    EXPECT_THAT(shown(0.5), ElementsAre(100, 0)) << "no number";
    EXPECT_THAT(shown(99), ElementsAre(150, 0.5));
    graph.setCurve({20, 251}, std::vector<float>{1}, 10);
    EXPECT_THAT(shown(99), ElementsAre(150, 0.5)) << "another band";
    EXPECT_THROW(graph.setCurve({20, 250}, samples, 0), GraphError);
    graph.setCurve({20, 250}, {}, 10);
    EXPECT_THAT(shown(0.1), ElementsAre(100, 0));
}

TEST(SoundResponses, RiseAtOnceAndFallSlowly)
{
    auto graph = opacityOf(R"({"audio": {"band": [30, 60], "to": [0, 1], "smooth": 0.5}})");
    const float samples[] = {0, 1, 0.2F, 0.2F, 0.9F, 0.2F};
    graph.setCurve({30, 60}, samples, 10);
    const double low = 0.2F;
    const double fallen = low + (1 - low) * std::exp(-0.4);
    EXPECT_EQ(at(graph, 0.1), 1);
    EXPECT_NEAR(at(graph, 0.3), fallen, 1e-12) << "two tenths later";
    EXPECT_EQ(at(graph, 0.4), 0.9F);
    for (const double after : {0.1, 0.6, 5.0})
        EXPECT_NEAR(at(graph, 0.4 + after), low + (0.9F - low) * std::exp(-after / 0.5), 1e-9) << after;

    auto whole = graphOf("am-binary", "Percent", R"({"audio": {"band": "all", "to": [0, 5]}})");
    whole.setCurve(host::SoundBand{}, std::vector<float>{0.5F}, 1);
    EXPECT_EQ(at(whole, 0), 3) << "2.5, half up";
}

TEST(SoundResponses, NameTheBandsThatTheOutputNeeds)
{
    const auto graph = host::parseGraph(R"({"effectengine": 2, "nodes": [
        {"id": "a", "effect": "highlight", "parameters": {
            "Opacity": {"audio": {"band": "treble", "to": [0, 1]}},
            "iMouse": {"components": [{"audio": {"band": [4000, 16000], "to": [0, 1]}},
                                      {"audio": {"band": "all", "to": [0, 1]}}]}}},
        {"id": "unused", "effect": "highlight", "inputs": ["source"],
            "parameters": {"Opacity": {"audio": {"band": "mid", "to": [0, 1]}}}}], "output": "a"})",
        "look.json", "");
    EXPECT_THAT(
        graph.bands(), testing::UnorderedElementsAre(host::SoundBand{4000, 16000}, host::SoundBand{}));
}

TEST(GraphVersions, WhatIsNewNeedsVersion2AndIsWrittenSo)
{
    const std::string ends = R"([{"time": 0, "value": [0, 0]}, {"time": 0.1, "value": [1, 0.7]}])";
    const std::pair<std::string, const char*> newer[] = {
        {R"({"keyframes": )" + ends + R"(, "repeat": "loop", "times": 3})", "\"repeat\""},
        {R"({"keyframes": [{"time": 0, "value": [0, 1], "interpolation": "bounce-in"},
            {"time": 1, "value": [1, 0]}]})",
            "interpolation \"bounce-in\""},
        {R"({"keyframes": [{"time": 0, "value": [0, 1], "interpolation": {"bezier": [0.1, -0.2, 0.3, 1.4]}},
            {"time": 1, "value": [1, 0]}], "repeat": "ping-pong"})",
            ""},
        {R"({"components": [0.25, {"keyframes": [{"percent": 0, "value": 0}, {"percent": 9, "value": 1}]}]})",
            "\"components\""},
        {R"({"components": [1, {"audio": {"band": "mid", "to": [0, 1]}}]})", "\"components\""},
        {R"({"audio": {"band": "all", "to": [[0, 1], [1, 0]], "smooth": 0.3}})", "\"audio\""},
        {R"({"audio": {"band": [30, 90.5], "to": [[0, 1], [1, 0]]}})", "\"audio\""},
    };
    for (const auto& [value, named] : newer) {
        const std::string message = messageOf("highlight", "iMouse", value, 1);
        EXPECT_THAT(message, HasSubstr("look.json: node \"n\": parameter iMouse: "));
        EXPECT_THAT(message, HasSubstr(std::string(named) + " needs version 2 of the format"));
        const auto graph = graphOf("highlight", "iMouse", value);
        const std::string text = host::graphText(graph);
        EXPECT_THAT(text, HasSubstr("\"effectengine\" : 2"));
        auto again = host::parseGraph(text, "again.json", "/");
        EXPECT_EQ(host::graphText(again), text);
        for (const double seconds : {-1.0, 0.05, 0.1, 0.25, 9.0})
            EXPECT_EQ(numbersAt(again, {.seconds = seconds}), numbersAt(graph, {.seconds = seconds}))
                << value;
    }
    for (const std::string& old : {R"({"keyframes": )" + ends + "}",
             R"({"keyframes": )" + ends + R"(, "repeat": "none"})", std::string("[1, 2]")})
        EXPECT_THAT(host::graphText(graphOf("highlight", "iMouse", old)), HasSubstr("\"effectengine\" : 1"));
}

TEST(GraphVersions, FaultsAreNamed)
{
    const std::string two = R"({"time": 0, "value": 0}, {"time": 1, "value": 1}])";
    const auto eased = [](const std::string& easing) {
        return R"({"keyframes": [{"time": 0, "value": 0, "interpolation": )" + easing
            + R"(}, {"time": 1, "value": 1}]})";
    };
    const std::pair<std::string, const char*> numbers[] = {
        {eased(R"("bounce")"), R"(there is no interpolation "bounce"; did you mean "bounce-in"?)"},
        {eased("7"), "\"interpolation\" must be a name, or"},
        {eased(R"({"bezier": [0, 0, 1]})"), "four numbers"},
        {eased(R"({"bezier": [0, 0, 1, "1"]})"), "four numbers"},
        {eased(R"({"bezier": [0, 0, 1.5, 1]})"), "x1 and x2 in 0..1"},
        {eased(R"({"bezzier": [0, 0, 1, 1]})"), "did you mean \"bezier\"?"},
        {R"({"keyframes": [)" + two + R"(, "repeat": "twice"})", "none, loop or ping-pong, not \"twice\""},
        {R"({"keyframes": [)" + two + R"(, "repeat": "loop", "times": 0})", "a whole number from 1, not 0"},
        {R"({"keyframes": [)" + two + R"(, "repeat": "loop", "times": 1.5})",
            "a whole number from 1, not 1.5"},
        {R"({"keyframes": [)" + two + R"(, "times": 2})", "goes with \"repeat\""},
        {R"({"keyframes": [{"time": 0, "value": 0}], "repeat": "loop"})", "at least two keyframes"},
        {R"({"components": [1]})", "Opacity: only a list of numbers has \"components\""},
        {R"({"audio": 5})", "\"audio\" must be an object"},
        {R"({"audio": {"to": [0, 1]}})", "needs a \"band\""},
        {R"({"audio": {"band": "base", "to": [0, 1]}})", R"(no band "base"; did you mean "bass"?)"},
        {R"({"audio": {"band": [90, 30], "to": [0, 1]}})", "the lower one first"},
        {R"({"audio": {"band": [-1, 30], "to": [0, 1]}})", "the lower one first"},
        {R"({"audio": {"band": "mid", "to": [0]}})", "\"to\": the value in silence"},
        {R"({"audio": {"band": "mid", "to": [0, [1]], "smooth": -1}})", "\"smooth\" must be"},
        {R"({"audio": {"band": "mid", "to": [0, "loud"]}})", "takes a number, not \"loud\""},
        {R"({"audio": {"band": "mid", "to": [0, 1]}, "keyframes": []})", "no member \"keyframes\" here"},
    };
    for (const auto& [value, message] : numbers) {
        const std::string said = messageOf("highlight", "Opacity", value, 2);
        EXPECT_THAT(said, HasSubstr(message)) << value;
        EXPECT_THAT(said, HasSubstr("look.json: node \"n\": parameter Opacity: "));
        EXPECT_THAT(said, Not(HasSubstr("\n")));
    }
    const std::pair<std::string, const char*> lists[] = {
        {R"({"components": [1, 2, 3]})", "there are 2 components, not 3"},
        {R"({"components": [1, [2, 3]]})", "component 2: parameter iMouse takes a number, not 2"},
        {R"({"components": [1, {"components": [1, 2]}]})", "component 2: there is no member \"components\""},
        {R"({"components": [1, {"keyframes": 3}]})", "component 2: \"keyframes\" must be a list"},
        {R"({"components": {}})", "\"components\" must be a list"},
        {R"({"audio": {"band": "mid", "to": [0, 1]}})", "iMouse takes 2 numbers, not 1"},
    };
    for (const auto& [value, message] : lists)
        EXPECT_THAT(messageOf("highlight", "iMouse", value, 2), HasSubstr(message)) << value;
    for (const char* const value :
        {R"({"components": ["x.cube"]})", R"({"audio": {"band": "mid", "to": ["x.cube", "y.cube"]}})",
            R"({"keyframes": [{"time": 0, "value": "x.cube", "interpolation": "ease"}, {"time": 1, "value": "y.cube"}]})"})
        EXPECT_THAT(messageOf("cube-lut", "CubeLutFile", value, 2), HasSubstr("parameter CubeLutFile: "))
            << value;
}

} // namespace
