// Shader effects through the public interface: inputs, textures, parameters, and what goes wrong.
#include "engine/effectList.h"
#include "shader/ShaderEngine.h"

#include <cmath>
#include <limits>
#include <optional>

namespace {

using ShaderEffect = test::ShaderEngine;
using test::Bgra;

constexpr Bgra kGrey{40, 40, 40, 255};

TEST_F(ShaderEffect, WithoutAProgramItShowsItsInput)
{
    describe(0, "");
    start();
    auto filter = this->filter(0, 37, 23);
    EXPECT_EQ(GetFilterInputCount(filter.handle()), 1u);
    const auto input = noise(37, 23, 1);
    filter.setInput(input);
    EXPECT_EQ(bytes(filter.run()), bytes(input));
    EXPECT_EQ(bytes(filter.run()), bytes(input));
}

TEST_F(ShaderEffect, InputsAndTexturesAreSamplersByTheirIndices)
{
    program(0, "uniform sampler2D mSample0, mSample1, mSample2;",
        "gl_FragColor = vec4(texture2D(mSample0, textureCoord).r, texture2D(mSample1, textureCoord).g,"
        " texture2D(mSample2, textureCoord).b, 1.0);",
        R"("INPUTS": 3)");
    program(1, "uniform sampler2D mSample0; uniform sampler2D mSample1;",
        "gl_FragColor = vec4(texture2D(mSample1, textureCoord).rgb, texture2D(mSample0, textureCoord).a);",
        R"("TEXTURES": [{"FILE": "paper.png", "INDEX": 1}])");
    start();
    ASSERT_EQ(SaveImage(plain(4, 4, {10, 20, 30, 255}).handle(), (files.path() + "paper.png").c_str()), 0u);

    auto three = filter(0);
    EXPECT_EQ(GetFilterInputCount(three.handle()), 3u);
    const auto red = plain(8, 8, {1, 2, 3, 4});
    const auto green = plain(16, 4, {5, 6, 7, 8}); // a texture of any size will do
    const auto blue = plain(8, 8, {9, 10, 11, 12});
    three.setInput(red, 0);
    three.setInput(green, 1);
    three.setInput(blue, 2);
    EXPECT_EQ(middle(three), (Bgra{9, 6, 3, 255}));

    auto textured = filter(1);
    textured.setInput(plain(8, 8, {0, 0, 0, 77}));
    int unit = 0;
    EXPECT_EQ(KEXSDK::getParamIntValue(textured.handle(), "mSample1", &unit), 0u);
    EXPECT_EQ(unit, 1);
}

TEST_F(ShaderEffect, DescribedTexturesAreLoaded)
{
    program(0, "uniform sampler2D mSample0; uniform sampler2D mSample1;",
        "gl_FragColor = vec4(texture2D(mSample1, textureCoord).rgb, texture2D(mSample0, textureCoord).a);",
        R"("TEXTURES": [{"FILE": "paper.png", "INDEX": 1}])");
    start();
    ASSERT_EQ(
        SaveImage(plain(4, 4, {10, 20, 30, 255}).handle(), (files.path() + "Shader/paper.png").c_str()), 0u);
    engine.reset(); // resource locations are read when the engine starts
    start();
    auto filter = this->filter(0);
    const auto input = plain(8, 8, {0, 0, 0, 77});
    filter.setInput(input);
    EXPECT_EQ(middle(filter), (Bgra{10, 20, 30, 77}));
}

// The pixel of a colour that a uniform gave as 0..1.
Bgra rounded(double b, double g, double r, double a)
{
    const auto byte = [](double v) { return (unsigned char)(std::lround(v * 255)); };
    return {byte(b), byte(g), byte(r), byte(a)};
}

TEST_F(ShaderEffect, UniformsOfEveryTypeTakeTheParameterOfTheirName)
{
    program(0,
        "uniform float one; uniform int whole; uniform vec4 colour; uniform ivec2 pair;"
        "uniform float row[4]; uniform mat3 matrix; uniform float u_amount; uniform float kept = 0.25;",
        "float sum = one;"
        "if (whole == 3 && pair.x == 4 && pair.y == -5) sum += 0.5;"
        "gl_FragColor = vec4(colour.r * sum, row[3], matrix[2][1] + u_amount, kept);");
    start();
    auto filter = this->filter(0);
    const auto input = plain(8, 8, kGrey);
    filter.setInput(input);
    EXPECT_EQ(middle(filter)[3], 64) << "without a parameter the program's own value stays";
    filter.set("one", 0.25f);
    filter.set("whole", 3);
    filter.set("colour", std::vector<float>{0.8f, 0, 0, 0});
    filter.set("pair", std::vector<int>{4, -5});
    filter.set("row", std::vector<float>{0, 0, 0, 0.5f});
    // Row by row: the program's matrix[2][1] is in column 2 of row 1.
    filter.set("matrix", std::vector<float>{0, 0, 0, 0, 0, 0.25f, 0, 0, 0});
    filter.set("Amount", 0.5f); // u_amount
    EXPECT_EQ(middle(filter), rounded(0.75, 0.5, 0.6, 0.25));
    // A name of its own comes before the fixed one.
    filter.set("u_amount", 0.125f);
    EXPECT_EQ(middle(filter), rounded(0.375, 0.5, 0.6, 0.25));
    // Too many numbers, or too few, or another type than the program's.
    filter.set("colour", std::vector<float>{0.2f, 0, 0, 0, 9, 9, 9, 9, 9, 9});
    filter.set("pair", std::vector<int>{4});
    filter.set("row", std::vector<float>(400, 1.0f));
    EXPECT_EQ(middle(filter), rounded(0.375, 1, 0.15, 0.25));
}

TEST_F(ShaderEffect, ParametersAreConvertedToTheProgramsTypes)
{
    program(0, "uniform sampler2D mSample0; uniform float level; uniform int steps; uniform vec2 both;",
        "gl_FragColor = texture2D(mSample0, textureCoord) * 0.0 + vec4(level / 4.0, float(steps) / 14.0, "
        "both);");
    start();
    auto filter = this->filter(0);
    const auto input = plain(8, 8, kGrey);
    filter.setInput(input);
    filter.set("level", 2);
    filter.set("steps", 7.9f);
    filter.set("both", std::vector<int>{1, 0});
    EXPECT_EQ(middle(filter), rounded(1, 0.5, 0.5, 0));
    filter.set("level", 0);
    EXPECT_EQ(middle(filter)[2], 0);
}

TEST_F(ShaderEffect, EveryNodeKnowsItsSizeItsNeighboursAndTheTime)
{
    program(0,
        "uniform vec2 u_resolution; uniform vec2 u_offset[9]; uniform float u_global_time, u_total_time;",
        "gl_FragColor = vec4(u_resolution.x / 100.0, u_offset[8].x * 10.0 + u_offset[0].y * 4.0,"
        "u_global_time / u_total_time, 1.0);");
    start();
    auto filter = this->filter(0, 20, 8);
    const auto input = plain(20, 8, kGrey);
    filter.setInput(input);
    filter.set(kEffectCurrentTime, 1.0f);
    filter.set(kEffectTotalTime, 4.0f);
    EXPECT_EQ(middle(filter), rounded(0.25, 0, 0.2, 1)); // 10 / 20 - 4 / 8
}

TEST_F(ShaderEffect, SamplersShowTheirInputsWhateverAHostStores)
{
    program(0, "uniform sampler2D mSample0;", "gl_FragColor = texture2D(mSample0, textureCoord);");
    start();
    auto filter = this->filter(0);
    const auto input = plain(8, 8, {10, 20, 30, 40});
    filter.setInput(input);
    const auto expected = bytes(filter.run());
    EXPECT_EQ(expected, bytes(input));
    filter.set("mSample0", 5);
    EXPECT_EQ(bytes(filter.run()), expected);
}

TEST_F(ShaderEffect, AChainOfTwoSizesDrawsIntoTheHostsPicture)
{
    program(0, "uniform sampler2D mSample0;", "gl_FragColor = texture2D(mSample0, textureCoord).bgra;");
    start();
    auto small = filter(0, 8, 8);
    auto large = filter(0, 16, 24);
    const auto input = plain(8, 8, {10, 20, 30, 40});
    small.setInput(input);
    large.connectFrom(small);
    const host::Image target(16, 24);
    ASSERT_EQ(DoFilterEx(large.handle(), target.handle()), 0u);
    EXPECT_EQ(bytes(target), bytes(plain(16, 24, {10, 20, 30, 40})));
}

TEST_F(ShaderEffect, ParamsAreListedAndChangeNothing)
{
    program(0, "uniform float Level = 1.0; uniform vec3 tint; uniform float Unset = 0.5;",
        "gl_FragColor = vec4(tint * Level, Unset);",
        R"("NAME": "tinted", "PARAMS": [
            {"name": "Level", "type": "float", "default": 0.5, "range": [0, 1], "help": "brightness"},
            {"name": "tint", "type": "floats", "default": [1, 0.5, 0.25]},
            {"name": "Unset", "type": "float"}])");
    start();
    auto filter = this->filter(0);
    const auto input = plain(8, 8, kGrey);
    filter.setInput(input);
    unsigned before = 0;
    unsigned after = 0;
    EXPECT_EQ(GetParamCount(filter.handle(), &before), 0u);
    EXPECT_EQ(middle(filter), rounded(0, 0, 0, 0.5));
    EXPECT_EQ(GetParamCount(filter.handle(), &after), 0u);
    EXPECT_EQ(after, before + 1) << "the sampler";
    EXPECT_TRUE(filter.set("tint", std::vector{1.0f, 0.5f, 0.25f}));
    EXPECT_EQ(middle(filter), rounded(0.25, 0.5, 1, 0.5)) << "the program's own level";
    EXPECT_TRUE(filter.set("Level", 0.5f));
    EXPECT_TRUE(filter.set("Unset", 1.0f));
    EXPECT_EQ(middle(filter), rounded(0.125, 0.25, 0.5, 1));

    listShaderEffectsOf(files.path());
    ASSERT_TRUE(findEffect("tinted"));
    std::string names;
    for (const KEXSDK::ParamInfo* param : describeParameters(guid(0)))
        names += std::string(param->name) + " ";
    EXPECT_EQ(
        names, "kex_effect_enable u_global_time u_total_time stRotate stScale stTranslate Level tint Unset ");
    listShaderEffectsOf("/nowhere/");
}

TEST_F(ShaderEffect, ThePictureMovesGrowsAndTurns)
{
    describe(0, "");
    start();
    constexpr int kSide = 16;
    host::Image input(kSide, kSide);
    const auto at = [](std::span<unsigned char> all, int x, int y) {
        return all.data() + (y * kSide + x) * 4;
    };
    std::fill_n(at(input.bytes(), 3, 5), 4, (unsigned char)(255)); // one white dot, column 3 of memory row 5
    auto filter = this->filter(0, kSide, kSide);
    filter.setInput(input);
    const auto brightest = [&](host::Filter& node) {
        const auto all = host::bytesOf(node.run());
        int best = 0;
        for (int i = 1; i < kSide * kSide; ++i)
            best = all[std::size_t(i) * 4] > all[std::size_t(best) * 4] ? i : best;
        return std::pair(best % kSide, best / kSide);
    };
    EXPECT_EQ(brightest(filter), std::pair(3, 5));
    filter.set("stTranslate", std::vector<float>{4, 2});
    EXPECT_EQ(brightest(filter), std::pair(7, 3)); // to the right, and toward the first row of memory
    filter.set("stTranslate", std::vector<float>{0, 0});
    filter.set("stRotate", 180.0f);
    EXPECT_EQ(brightest(filter), std::pair(12, 10));
    filter.set("stRotate", 90.0f);
    EXPECT_EQ(brightest(filter), std::pair(5, 12));
    filter.set("stRotate", 0.0f);
    filter.set("stScale", std::vector<float>{-1, 1});
    EXPECT_EQ(brightest(filter), std::pair(12, 5));
    filter.set("stScale", std::vector<float>{0.5f, 0.5f});
    const auto corner = bytes(filter.run());
    EXPECT_EQ(corner[3], 0) << "beside the picture all is transparent";

    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const float wild : {std::nanf(""), kInfinity, -1e30f, 0.0f}) {
        filter.set("stTranslate", std::vector<float>{wild, wild});
        filter.set("stScale", std::vector<float>{wild, wild});
        filter.set("stRotate", wild);
        filter.run();
    }
}

TEST_F(ShaderEffect, AnInputThatIsDisconnectedStaysAsItWas)
{
    program(0, "uniform vec3 tint;", "gl_FragColor = vec4(tint, 1.0);");
    program(1, "uniform sampler2D mSample0; uniform sampler2D mSample1;",
        "gl_FragColor = texture2D(mSample1, textureCoord) + 0.0 * texture2D(mSample0, textureCoord);",
        R"("INPUTS": 2)");
    start();
    const auto input = plain(8, 8, kGrey);
    // The source is released at once, or drawn again, made larger and released later.
    for (const bool atOnce : {true, false}) {
        std::optional<host::Filter> source(filter(0));
        auto both = filter(1);
        source->setInput(input);
        source->set("tint", std::vector{0.2f, 0.4f, 0.6f});
        both.setInput(input);
        both.connectFrom(*source, 1);
        const Bgra before = rounded(0.6, 0.4, 0.2, 1);
        EXPECT_EQ(middle(both), before);
        ASSERT_EQ(ConnectFilter(nullptr, both.handle(), 1), 0u);
        if (!atOnce) {
            EXPECT_EQ(middle(both), before);
            source->set("tint", std::vector{1.0f, 1.0f, 1.0f});
            EXPECT_EQ(middle(*source), rounded(1, 1, 1, 1));
            EXPECT_EQ(middle(both), before) << "the picture, not the texture that it came in";
        }
        source.reset();
        EXPECT_EQ(middle(both), before);
        auto other = filter(0);
        other.setInput(input);
        other.set("tint", std::vector{1.0f, 0.0f, 0.0f});
        EXPECT_EQ(middle(other), rounded(0, 0, 1, 1));
        EXPECT_EQ(middle(both), before);
        both.connectFrom(other, 1);
        EXPECT_EQ(middle(both), rounded(0, 0, 1, 1)) << "connected anew";
    }
}

TEST_F(ShaderEffect, ADisabledOneOrOneInAChainBehavesLikeEveryNode)
{
    program(0, "uniform sampler2D mSample0;",
        "gl_FragColor = vec4(1.0 - texture2D(mSample0, textureCoord).rgb, 1.0);");
    start();
    const auto input = noise(33, 17, 4);
    std::vector<host::Filter> chain;
    for (int i = 0; i < 4; ++i) {
        chain.push_back(filter(0, 33, 17));
        i == 0 ? chain[0].setInput(input) : chain.back().connectFrom(chain[std::size_t(i) - 1]);
    }
    auto expected = bytes(input);
    for (std::size_t i = 3; i < expected.size(); i += 4)
        expected[i] = 255;
    EXPECT_EQ(bytes(chain[3].run()), expected) << "inverted four times";
    chain[1].set(kEffectEnable, 0);
    auto inverted = expected;
    for (std::size_t i = 0; i < inverted.size(); ++i)
        inverted[i] = i % 4 == 3 ? 255 : (unsigned char)(255 - inverted[i]);
    EXPECT_EQ(bytes(chain[3].run()), inverted);

    // A CPU effect in between reads what the GPU drew.
    host::Filter grey("DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A", 33, 17);
    grey.connectFrom(chain[0]);
    host::Filter direct("DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A", 33, 17);
    host::Image onCpu(33, 17);
    std::ranges::copy(inverted, onCpu.bytes().begin());
    direct.setInput(onCpu);
    EXPECT_EQ(bytes(grey.run()), bytes(direct.run()));

    // DoFilterEx draws into the host's own image.
    host::Image target(33, 17);
    ASSERT_EQ(DoFilterEx(chain[0].handle(), target.handle()), 0u);
    EXPECT_EQ(bytes(target), inverted);
}

TEST_F(ShaderEffect, WhatCannotBeDrawnIsTheInput)
{
    program(0, "uniform sampler2D mSample0;", "gl_FragColor = nonsense;");
    describe(1, R"("SHADER": "nowhere.frag")");
    describe(2, R"("SHADER": ")" + std::string(3000, 'x') + R"(")");
    describe(3, R"("SHADER": "../../../etc/passwd")");
    program(4, "uniform sampler2D mSample1;", "gl_FragColor = texture2D(mSample1, textureCoord);",
        R"("TEXTURES": [{"FILE": "nowhere.png", "INDEX": 1}])");
    describe(5, R"("SHADER": 7, "TEXTURES": [{"INDEX": 0}], "PU": 3)");
    files.write("Shader/6.conf", "{\"GUID\":\"" + guid(6) + "\"\n\"SHADER\"");
    describe(7, R"("PU": "no such particles")");
    start();
    const auto input = noise(8, 8, 5);
    const auto larger = plain(16, 16, {1, 2, 3, 4});
    for (int i = 0; i < 8; ++i) {
        SCOPED_TRACE(i);
        auto node = filter(i);
        node.setInput(input);
        EXPECT_EQ(bytes(node.run()), bytes(input));
        EXPECT_EQ(bytes(node.run()), bytes(input));
        node.setInput(larger);
        EXPECT_EQ(middle(node), (Bgra{1, 2, 3, 4}));
    }
}

TEST_F(ShaderEffect, AFileThatWentAwayCostsOneEffect)
{
    program(0, "uniform sampler2D mSample0;", "gl_FragColor = vec4(1.0);");
    describe(1, "");
    start();
    std::filesystem::remove(files.path() + "Shader/0.conf");
    const auto input = noise(8, 8, 6);
    auto gone = filter(0);
    gone.setInput(input);
    EXPECT_EQ(GetFilterInputCount(gone.handle()), 1u);
    EXPECT_EQ(bytes(gone.run()), bytes(input));
    EXPECT_FALSE(gone.set(":T00:E00.EmissionRate", 1.0f));
    auto other = filter(1);
    other.setInput(input);
    EXPECT_EQ(bytes(other.run()), bytes(input));
}

// The log is opened once per process: each of these runs in a process of its own.
class ShaderEffectLog : public ShaderEffect {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    int count(const std::string& text)
    {
        const std::string log = files.read("EffectEngine.log");
        int found = 0;
        for (std::size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
            ++found;
        return found;
    }
    [[noreturn]] void finish()
    {
        std::fputs(files.read("EffectEngine.log").c_str(), stderr);
        _exit(HasFailure() ? 1 : 0);
    }
};

TEST_F(ShaderEffectLog, TellsOnceWhyAnEffectPassesItsInputThrough)
{
    const auto body = [this] {
        program(0, "uniform sampler2D mSample0;", "gl_FragColor = nonsense;");
        files.write("Shader/1.conf", "{\"GUID\":\"" + guid(1) + "\"\n");
        describe(2, "");
        describe(3, R"("TEXTURES": [{"FILE": "nowhere.png", "INDEX": 1}])");
        start(true);
        std::filesystem::remove(files.path() + "Shader/2.conf");
        const auto input = plain(8, 8, kGrey);
        for (int i = 0; i < 4; ++i) {
            auto node = filter(i);
            node.setInput(input);
            node.run();
            node.run();
        }
        EXPECT_EQ(count("Load shader effects."), 1);
        EXPECT_EQ(count("Load color table lookup shader effects."), 1);
        EXPECT_EQ(count("Load shader transitions."), 1);
        EXPECT_EQ(count("Shader effect ["), 2);
        EXPECT_EQ(count("The picture nowhere.png"), 1);
        EXPECT_EQ(count(files.path() + "Shader/0.conf"), 1);
        EXPECT_GE(count("nonsense"), 1) << "the driver's message";
        EXPECT_EQ(count("Read json error [" + files.path() + "Shader/1.conf]"), 1);
        EXPECT_EQ(count("Can't find shader file [" + files.path() + "Shader/2.conf]"), 1);
        finish();
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

} // namespace
