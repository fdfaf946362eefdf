// Mix and mask of nodes: what they show, what they depend on, what is refused.
#include "host/EffectGraph.h"
#include "host/GraphError.h"
#include "support/FilesInMemory.h"
#include "support/GraphFixture.h"
#include "support/TemporaryDirectory.h"
#include "support/paths.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

using host::EffectGraph;
using host::GraphError;
using host::GraphFault;
using test::Bytes;
using test::copyOf;
using test::frameAt;
using test::parsed;
using testing::ElementsAre;
using testing::HasSubstr;

class MixAndMask : public test::GraphFixture { };

// The rounded mix of two pictures, with a mask's value for each pixel.
Bytes mixed(const Bytes& from, const Bytes& effect, double mix, const Bytes& mask = {})
{
    Bytes to(from.size());
    for (std::size_t i = 0; i < to.size(); ++i) {
        const double share = mix * (mask.empty() ? 1 : mask[i / 4] / 255.0);
        to[i] = u8(std::floor(from[i] + (effect[i] - from[i]) * share + 0.5));
    }
    return to;
}

// Luma times alpha of a picture in which both are plain: grey and opaque, or transparent.
Bytes maskOf(const Bytes& picture)
{
    Bytes mask;
    for (std::size_t i = 0; i < picture.size(); i += 4)
        mask.push_back(picture[i + 3] == 0 ? 0 : picture[i]);
    return mask;
}

TEST_F(MixAndMask, AMixLiesBetweenInputAndEffect)
{
    paint(1);
    const auto node = [](const std::string& mix) {
        return R"({"effect": "am-negative", "mix": )" + mix + "}";
    };
    const Bytes effect = show(R"({"effect": "am-negative"})");
    const Bytes input = firstBytes();
    ASSERT_NE(effect, input);
    EXPECT_EQ(show(node("0")), input);
    EXPECT_EQ(show(node("-3")), input);
    EXPECT_EQ(show(node("1")), effect);
    EXPECT_EQ(show(node("7.5")), effect);
    EXPECT_EQ(show(node("0.25")), mixed(input, effect, 0.25));
    const std::string moving =
        node(R"({"keyframes": [{"frame": 0, "value": 0}, {"frame": 20, "value": 1}]})");
    EXPECT_EQ(show(moving, frameAt(0)), input);
    EXPECT_EQ(show(moving, frameAt(5)), mixed(input, effect, 0.25));
    EXPECT_EQ(show(moving, frameAt(20)), effect);
    EXPECT_THAT(parsed(node("7.5")).warnings(), ElementsAre(HasSubstr("mix=7.5 lies outside")));
}

TEST_F(MixAndMask, AMixOfATransitionGoesOnFromItsFirstPicture)
{
    paint(1);
    const auto time = frameAt(20);
    const std::string push = R"({"effect": "push", "inputs": ["source", "source-2"])";
    EXPECT_EQ(show(push + R"(, "mix": 0.5})", time), mixed(firstBytes(), show(push + "}", time), 0.5));
}

// Effects that go on from their own output, or remember frames, never see what was mixed; nor do frames get
// lost whose mix is 0.
TEST_F(MixAndMask, LeaveWhatAnEffectRemembersAlone)
{
    const std::string times = R"({"keyframes": [{"frame": 0, "value": 0.5, "interpolation": "hold"},
        {"frame": 3, "value": 0, "interpolation": "hold"}, {"frame": 6, "value": 1}]})";
    for (const std::string effect : {R"("echo")", R"("vertigo")", R"("water-ripple")", R"("delay-grab")",
             R"("twirl", "inputs": ["source", "source-2"])", R"("am-bad-tv-signal")", R"("am-noise")"}) {
        SCOPED_TRACE(effect);
        const auto run = [&](const std::string& members) {
            test::restartSharedState();
            EffectGraph graph = graphOf(parsed(R"({"effect": )" + effect + members + "}"));
            std::vector<Bytes> frames;
            for (int frame = 0; frame < 10; ++frame) {
                paint(unsigned(frame));
                frames.push_back(copyOf(graph.run(frameAt(frame))));
            }
            return frames;
        };
        const auto whole = run("");
        const auto part = run(R"(, "mix": )" + times);
        for (int frame = 0; frame < 10; ++frame) {
            paint(unsigned(frame));
            const double mix = frame < 3 ? 0.5 : frame < 6 ? 0 : 1;
            EXPECT_EQ(part[std::size_t(frame)], mixed(firstBytes(), whole[std::size_t(frame)], mix)) << frame;
        }
    }
}

TEST_F(MixAndMask, AMaskIsAnotherNodesPicture)
{
    paint(1);
    const std::string nodes = R"({"id": "where", "effect": "am-binary", "inputs": ["source-2"]},
        {"id": "shown", "effect": "am-negative", "inputs": ["source"])";
    setAlpha(second(), 255);
    const Bytes mask = maskOf(show(R"({"effect": "am-binary", "inputs": ["source-2"]})"));
    const Bytes input = firstBytes();
    const Bytes effect = show(R"({"effect": "am-negative"})");
    EXPECT_EQ(show(nodes + R"(, "mask": {"node": "where"}})"), mixed(input, effect, 1, mask));
    EXPECT_EQ(show(nodes + R"(, "mix": 0.4, "mask": {"node": "where"}})"), mixed(input, effect, 0.4f, mask));
    Bytes inverted = mask;
    for (u8& value : inverted)
        value = u8(255 - value);
    EXPECT_EQ(
        show(nodes + R"(, "mask": {"node": "where", "invert": true}})"), mixed(input, effect, 1, inverted));

    EffectGraph graph = graphOf(parsed(R"({"effect": "am-negative", "mask": {"node": "source-2"}})"));
    EXPECT_EQ(graph.sources(), 2u);
    for (const u8 value : {0, 255, 90}) { // drawn anew for each frame
        for (std::size_t i = 0; i < second().bytes().size(); ++i)
            second().bytes()[i] = i % 4 == 3 ? 255 : value;
        EXPECT_EQ(copyOf(graph.run({})), mixed(input, effect, 1, Bytes(input.size() / 4, value)))
            << int(value);
    }
}

TEST_F(MixAndMask, AMaskIsAFile)
{
    const test::TemporaryDirectory files;
    files.write("mask.png", "the test's graphics system looks at the name alone");
    test::files.pixels[files.path() + "mask.png"] = {
        {10, 10, 10, 255}, {255, 255, 255, 255}, {0, 0, 0, 255}, {200, 200, 200, 0}, {77, 77, 77, 255}};
    const Bytes input = firstBytes();
    const Bytes effect = show(R"({"effect": "am-negative"})");
    const host::Image picture = host::Image::load(files.path() + "mask.png", kWidth, kHeight);
    ASSERT_TRUE(picture);
    const Bytes mask = maskOf(copyOf(picture.handle()));
    for (const char* const member : {R"("mask.png")", R"({"picture": "mask.png"})"}) {
        const auto graph =
            parsed(R"({"effect": "am-negative", "mask": )" + std::string(member) + "}", files.path());
        EXPECT_EQ(showGraph(graph), mixed(input, effect, 1, mask));
        EXPECT_EQ(graph.sources(), 1u);
        EXPECT_THAT(host::graphText(graph), HasSubstr(files.path() + "mask.png"));
    }
    test::files.asked.clear();
    EffectGraph graph = graphOf(parsed(R"({"effect": "am-negative", "mask": "mask.png"})", files.path()));
    graph.run({});
    graph.reset();
    graph.run({});
    EXPECT_EQ(std::ranges::count(test::files.asked, files.path() + "mask.png"), 1) << "loaded once";
}

TEST_F(MixAndMask, FilesThatCannotBeMasksAreNamed)
{
    const test::TemporaryDirectory files;
    files.write("notes.png", "no picture");
    const auto errorOf = [&](const char* file) {
        try {
            graphOf(parsed(
                R"({"id": "n", "effect": "blur", "mask": ")" + std::string(file) + "\"}", files.path()));
        } catch (const GraphError& error) {
            return std::pair{error.fault(), std::string(error.what())};
        }
        return std::pair{GraphFault::content, std::string("accepted")};
    };
    const auto path = [&](const char* file) { return files.path() + file; };
    EXPECT_EQ(errorOf("notes.png"),
        std::pair(GraphFault::unreadable, "effect n: mask: cannot read " + path("notes.png")));
    EXPECT_EQ(errorOf("nowhere.png"),
        std::pair(GraphFault::missingFile, "effect n: mask: no such file: " + path("nowhere.png")));
}

TEST_F(MixAndMask, AMaskIsADependencyLikeAnInput)
{
    const auto graph =
        parsed(R"({"id": "shown", "effect": "am-negative", "inputs": ["late"], "mask": {"node": "where"}},
        {"id": "late", "effect": "delay-grab", "inputs": ["source"]},
        {"id": "where", "effect": "delay-grab", "inputs": ["slow"]},
        {"id": "slow", "effect": "delay-grab", "inputs": ["source-3"]},
        {"id": "last", "effect": "blur", "inputs": ["shown"]})");
    EXPECT_EQ(graph.sources(), 3u);
    EXPECT_EQ(graph.used().size(), 5u);
    EXPECT_EQ(graph.facts().historyFrames, 14) << "along the mask";
    EXPECT_THAT(graph.warnings(), testing::IsEmpty());
    EXPECT_THAT(parsed(R"({"effect": "blur", "mask": {"node": "w"}, "inputs": ["source"]},
        {"id": "w", "effect": "water-ripple", "inputs": ["source"]}, {"effect": "am-negative", "inputs": ["blur"]})")
                    .facts()
                    .fromStart,
        ElementsAre("w"));
}

TEST_F(MixAndMask, AreSavedAndReadBackAsTheyWere)
{
    const auto graph =
        parsed(R"({"id": "w", "effect": "blur"}, {"effect": "am-negative", "inputs": ["source"],
        "mask": {"node": "w", "invert": true, "feather": 2.5},
        "mix": {"keyframes": [{"time": 0, "value": 0}, {"time": 1, "value": 0.75}]}})");
    const std::string text = host::graphText(graph);
    const auto again = host::parseGraph(text, "again.json", "/elsewhere");
    EXPECT_EQ(host::graphText(again), text);
    paint(1);
    EXPECT_EQ(showGraph(again, frameAt(9)), showGraph(graph, frameAt(9)));
    EXPECT_NE(showGraph(again, frameAt(9)), firstBytes());
}

TEST_F(MixAndMask, MistakesAreNamed)
{
    const std::pair<const char*, const char*> cases[] = {
        {R"("mix": "half")", "parameter mix takes a number"},
        {R"("mix": NaN)", "parameter mix takes a number, not nan"},
        {R"("mix": [1, 1])", "parameter mix takes a number, not 2"},
        {R"("mix": null)", "parameter mix takes a number"},
        {R"("mask": 5)", "\"mask\" must be a file or an object"},
        {R"("mask": "")", "either a \"picture\" or a \"node\""},
        {R"("mask": {})", "either a \"picture\" or a \"node\""},
        {R"("mask": {"picture": "a.png", "node": "source"})", "either a \"picture\" or a \"node\""},
        {R"("mask": {"picture": 3})", "\"picture\" must be a string"},
        {R"("mask": {"node": "sorce"})", R"(its mask names no node "sorce"; did you mean "source"?)"},
        {R"("mask": {"node": "n"})", "in a circle through node \"n\""},
        {R"("mask": {"node": "source", "invert": 1})", "\"invert\" must be true or false"},
        {R"("mask": {"node": "source", "feather": -1})", "a number from 0 on"},
        {R"("mask": {"node": "source", "feather": "soft"})", "\"feather\" must be a number"},
        {R"("mask": {"file": "a.png"})", R"(no member "file" here)"},
    };
    for (const auto& [member, message] : cases) {
        try {
            parsed(R"({"id": "n", "effect": "blur", )" + std::string(member) + "}");
            ADD_FAILURE() << "accepted: " << member;
        } catch (const GraphError& error) {
            EXPECT_EQ(error.fault(), GraphFault::content) << member;
            EXPECT_THAT(error.what(), HasSubstr(message));
        }
    }
}

// A picture that the engine wrote is a mask that shows the effect where the picture is bright.
TEST(MaskFiles, LieOverThePictureAsTheyAreSeen)
{
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    const test::TemporaryDirectory files;
    const host::Engine engine(test::kResourceDirectory, nullptr);
    constexpr unsigned kSide = 8;
    const host::Image mask(kSide, kSide);
    const host::Image black(kSide, kSide);
    for (std::size_t i = 0; i < mask.bytes().size(); ++i) {
        const bool lowerLeft = i / 4 / kSide < 3 && i / 4 % kSide < 5;
        mask.bytes()[i] = i % 4 == 3 || lowerLeft ? 255 : 0;
        black.bytes()[i] = i % 4 == 3 ? 255 : 0;
    }
    SaveImage(mask.handle(), (files.path() + "mask.png").c_str());
    EffectGraph graph(parsed(R"({"effect": "am-negative", "mask": "mask.png"})", files.path()), kSide, kSide);
    graph.setSource(black);
    EXPECT_EQ(copyOf(graph.run({})), copyOf(mask.handle()));
}

} // namespace
