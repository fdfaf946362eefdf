// The shader effects, lookups, transitions and particle scenes that are shipped: each works, and every
// parameter that it tells of does something.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "descriptors/ShaderDescriptor.h"
#include "descriptors/descriptorFiles.h"
#include "engine/effectList.h"
#include "host/EffectGraph.h"
#include "hosting/Host.h"
#include "support/TemporaryDirectory.h"
#include "support/paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <numeric>
#include <set>

namespace {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;
using Bytes = std::vector<unsigned char>;

constexpr int kWidth = 96;
constexpr int kHeight = 54;

/// A picture with smooth areas, hard edges, bright and dark places and all hues: something for every effect.
host::Image scene(int number)
{
    host::Image image(kWidth, kHeight);
    const auto bytes = image.bytes();
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const std::size_t at = std::size_t(y * kWidth + x) * 4;
            const bool bright = (x / 12 + y / 9 + number) % 3 == 0;
            bytes[at] = (unsigned char)(number ? 255 - x * 2 : x * 2);
            bytes[at + 1] = (unsigned char)(bright ? 240 : y * 4);
            bytes[at + 2] = (unsigned char)(bright ? 250 - x : (x * y) % 200);
            bytes[at + 3] = 255;
        }
    return image;
}

class ShaderPack : public testing::Test {
protected:
    void SetUp() override
    {
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
        listShaderEffectsOf(test::kResourceDirectory);
        engine.emplace(test::kResourceDirectory, logs.path().c_str());
        ASSERT_TRUE(KEXSDK::gpuAvailable());
        first.emplace(scene(0));
        second.emplace(scene(1));
    }
    void TearDown() override
    {
        first.reset();
        second.reset();
        engine.reset();
        listShaderEffectsOf("");
    }

    static std::vector<EffectInfo> effects()
    {
        std::vector<EffectInfo> all = listEffects();
        std::erase_if(all, [](const EffectInfo& effect) { return !effect.needsGpu; });
        return all;
    }
    static bool isTransition(const EffectInfo& effect) { return effect.family == "transition"; }

    host::Filter make(const EffectInfo& effect, float seconds = 2.2f)
    {
        host::Filter filter(effect.guid, kWidth, kHeight);
        filter.setInput(*first);
        if (effect.inputs > 1)
            filter.setInput(*second, 1);
        filter.set("u_global_time", seconds);
        return filter;
    }
    static Bytes run(host::Filter& filter)
    {
        const auto bytes = host::bytesOf(filter.run());
        return {bytes.begin(), bytes.end()};
    }
    static Bytes bytesOf(const host::Image& image) { return {image.bytes().begin(), image.bytes().end()}; }

    test::TemporaryDirectory logs;
    std::optional<host::Engine> engine;
    std::optional<host::Image> first, second;
};

/// True for parameters that all effects have, and for those without a value of the effect's own.
bool isStandard(const ParamInfo& param)
{
    const std::string_view name = param.name;
    return !param.declared || name.starts_with("u_") || name == "kex_effect_enable";
}

/// Stores one element's value; the others keep what the descriptor gives.
void store(host::Filter& filter, const ParamInfo& param, u32 element, double value)
{
    if (param.type == KEXSDK::ParamType::real) {
        filter.set(param.name, float(value));
        return;
    }
    std::vector<float> values(param.value.begin(), param.value.begin() + param.elements);
    values[element] = float(value);
    filter.set(param.name, values);
}

TEST_F(ShaderPack, EveryFileIsAnEffectOfItsOwn)
{
    std::size_t files = 0;
    std::size_t effectsOf[3] = {};
    std::set<std::string> listed;
    for (const EffectInfo& effect : effects())
        listed.insert(effect.guid);
    for (std::size_t i = 0; i < 3; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(
                 std::string(test::kResourceDirectory) + shader::kDescriptorDirectories[i]))
            if (entry.path().extension() == ".conf") {
                ++files;
                ++effectsOf[i];
                EXPECT_EQ(shader::readDescriptor(entry.path()).status, shader::DescriptorStatus::read)
                    << entry.path();
            }
    EXPECT_EQ(listed.size(), files) << "two files claim one GUID, or one is malformed";
    for (const auto& [guid, compiledIn] : KEXSDK::EffectRegistry::instance().entries())
        EXPECT_FALSE(listed.contains(guid)) << compiledIn.info.name;
    EXPECT_GE(effectsOf[0], 24u + 10u);
    EXPECT_GE(effectsOf[1], 12u);
    EXPECT_GE(effectsOf[2], 16u);
}

TEST_F(ShaderPack, EveryEffectDrawsSomethingAndComplainsOfNothing)
{
    for (const EffectInfo& effect : effects()) {
        SCOPED_TRACE(effect.name);
        host::Filter filter = make(effect);
        const Bytes drawn = run(filter);
        EXPECT_TRUE(drawn != bytesOf(*first)) << "shows its input";
    }
    const std::string log = logs.read("EffectEngine.log");
    for (const char* const level : {" WARN", " ERROR", " CRIT"})
        EXPECT_EQ(log.find(level), std::string::npos) << log.substr(log.find(level), 400);
}

TEST_F(ShaderPack, EveryDescribedParameterMovesPixels)
{
    for (const EffectInfo& effect : effects()) {
        const auto params = describeParameters(effect.guid);
        for (const ParamInfo* const param : params) {
            if (isStandard(*param))
                continue;
            SCOPED_TRACE(effect.name + " " + param->name);
            EXPECT_LT(param->low, param->high);
            EXPECT_STRNE(param->help, "");
            for (u32 element = 0; element < param->elements; ++element) {
                EXPECT_LE(param->low, param->value[element]);
                EXPECT_GE(param->high, param->value[element]);
                std::vector<Bytes> pictures;
                // Both ends may mean the same, as a turn to the left and to the right.
                const double between = param->low + 0.37 * (param->high - param->low);
                for (const double value : {param->low, param->value[element], between, param->high}) {
                    host::Filter filter = make(effect);
                    store(filter, *param, element, value);
                    pictures.push_back(run(filter));
                }
                EXPECT_TRUE(std::ranges::any_of(
                    pictures, [&](const Bytes& picture) { return picture != pictures[0]; }))
                    << "element " << element;
            }
        }
    }
}

TEST_F(ShaderPack, TransitionsBeginAndEndWithTheirInputs)
{
    for (const EffectInfo& effect : effects()) {
        if (!isTransition(effect))
            continue;
        SCOPED_TRACE(effect.name);
        host::Filter filter = make(effect, 0);
        EXPECT_EQ(run(filter), bytesOf(*first));
        filter.set("u_global_time", 5.0f); // the duration that a node begins with
        EXPECT_EQ(run(filter), bytesOf(*second));
        filter.set("u_global_time", 2.5f);
        const Bytes between = run(filter);
        EXPECT_NE(between, bytesOf(*first));
        EXPECT_NE(between, bytesOf(*second));
    }
}

TEST_F(ShaderPack, DescribedDefaultsAreWhatEffectsDoByThemselves)
{
    for (const EffectInfo& effect : effects()) {
        SCOPED_TRACE(effect.name);
        host::Filter untouched = make(effect);
        const Bytes expected = run(untouched);
        for (const ParamInfo* const param : describeParameters(effect.guid)) {
            if (isStandard(*param))
                continue;
            host::Filter filter = make(effect);
            store(filter, *param, 0, param->value[0]);
            EXPECT_TRUE(run(filter) == expected) << param->name;
        }
    }
}

// A host comes to a frame over every frame before, or straight; the straight way is tried first, when nothing
// was drawn yet.
TEST_F(ShaderPack, EveryWayToAFrameOfAParticleSceneShowsTheSamePicture)
{
    constexpr int kFirst = 24;
    constexpr int kFrames = 30;
    constexpr float kFrameRate = 25;
    int scenes = 0;
    for (const EffectInfo& effect : effects()) {
        if (effect.family != "particles")
            continue;
        SCOPED_TRACE(effect.name);
        ++scenes;
        std::vector<Bytes> jumped;
        host::Filter direct = make(effect, kFirst / kFrameRate);
        for (int i = kFirst; i < kFrames; ++i) {
            direct.set("u_global_time", float(i) / kFrameRate);
            jumped.push_back(run(direct));
        }
        host::Filter walking = make(effect, 0);
        for (int i = 0; i < kFrames; ++i) {
            walking.set("u_global_time", float(i) / kFrameRate);
            const Bytes frame = run(walking);
            if (i >= kFirst) {
                EXPECT_TRUE(frame == jumped[std::size_t(i - kFirst)]) << "frame " << i;
            }
        }
    }
    EXPECT_GE(scenes, 10);
}

// Particles change the picture at the first frame at least half as much as once the scene has long been
// running.
TEST_F(ShaderPack, ParticleScenesAreFilledAtTheirFirstFrame)
{
    const auto strength = [&](host::Filter& filter, float seconds) {
        filter.set("u_global_time", seconds);
        const Bytes shown = run(filter);
        const Bytes plain = bytesOf(*first);
        return std::transform_reduce(shown.begin(), shown.end(), plain.begin(), 0.0, std::plus{},
            [](int a, int b) { return double(std::abs(a - b)); });
    };
    for (const EffectInfo& effect : effects()) {
        if (effect.family != "particles")
            continue;
        SCOPED_TRACE(effect.name);
        host::Filter filter = make(effect);
        const double atFirst = strength(filter, 0);
        const double later = (strength(filter, 13) + strength(filter, 16) + strength(filter, 19)) / 3;
        EXPECT_GT(atFirst, 0.5 * later);
        EXPECT_GT(later, 0);
    }
}

TEST_F(ShaderPack, NeutralValuesLeaveThePicture)
{
    struct Neutral {
        const char* effect;
        const char* param;
        float value;
    };
    constexpr Neutral kNeutral[] = {{"soft-blur", "Radius", 0}, {"motion-blur", "Length", 0},
        {"zoom-blur-gpu", "Strength", 0}, {"bloom", "Intensity", 0}, {"unsharp-mask", "Amount", 0},
        {"pixel-mosaic", "Size", 1}, {"chromatic-shift", "Amount", 0}, {"glitch", "Amount", 0},
        {"heat-haze", "Strength", 0}, {"light-rays", "Intensity", 0}, {"shader-vignette", "Amount", 0},
        {"duotone", "Amount", 0}, {"frosted-glass", "Roughness", 0}, {"look-cinema", "Strength", 0}};
    for (const Neutral& neutral : kNeutral) {
        SCOPED_TRACE(neutral.effect);
        const EffectInfo* const effect = findEffect(neutral.effect);
        ASSERT_NE(effect, nullptr);
        host::Filter filter = make(*effect);
        filter.set(neutral.param, neutral.value);
        EXPECT_EQ(run(filter), bytesOf(*first));
    }
}

TEST_F(ShaderPack, LooksGradeGreysAndPrimaries)
{
    const auto middle = [&](const char* look, Bytes pixel) {
        host::Image plain(kWidth, kHeight);
        for (std::size_t i = 0; i < plain.bytes().size(); ++i)
            plain.bytes()[i] = pixel[i % 4];
        host::Filter filter = make(*findEffect(look));
        filter.setInput(plain);
        const Bytes all = run(filter);
        return Bytes(
            all.begin() + std::ptrdiff_t(all.size() / 2), all.begin() + std::ptrdiff_t(all.size() / 2) + 4);
    };
    // Blue, green, red: what a table addressed with exchanged axes would not give.
    const Bytes red = middle("look-silver", {0, 0, 255, 255});
    const Bytes blue = middle("look-silver", {255, 0, 0, 255});
    EXPECT_GT(red[0], 120); // as behind an orange filter
    EXPECT_LT(blue[0], 12);
    const Bytes leaf = middle("look-infrared", {30, 160, 40, 255});
    const Bytes sky = middle("look-infrared", {200, 90, 60, 255});
    EXPECT_GT(leaf[1], 200);
    EXPECT_LT(sky[1], 60);
    EXPECT_EQ(middle("look-sepia", {0, 0, 0, 200})[3], 200);
}

TEST_F(ShaderPack, TheTriangleBlurSpreadsAPointEvenly)
{
    host::Image point(kWidth, kHeight);
    for (std::size_t i = 0; i < point.bytes().size(); ++i)
        point.bytes()[i] = i % 4 == 3 ? 255 : 0;
    constexpr int kX = 48;
    constexpr int kY = 27;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            point.bytes()[std::size_t(((kY + dy) * kWidth + kX + dx) * 4)] = 255;
    host::Filter filter("4BADD6CB-B71B-44ed-8737-9F3DE9634C31", kWidth, kHeight); // two steps of the blur
    ASSERT_TRUE(filter.set("Radius", 4));
    filter.setInput(point);
    const Bytes blurred = run(filter);
    const auto at = [&](int x, int y) { return int(blurred[std::size_t((y * kWidth + x) * 4)]); };
    EXPECT_GT(at(kX, kY), at(kX + 2, kY));
    EXPECT_GT(at(kX + 2, kY), at(kX + 4, kY));
    EXPECT_GT(at(kX + 3, kY), 0);
    EXPECT_EQ(at(kX + 7, kY), 0);
    for (int away = 1; away < 7; ++away) {
        EXPECT_NEAR(at(kX + away, kY), at(kX - away, kY), 1) << away;
        EXPECT_NEAR(at(kX, kY + away), at(kX, kY - away), 1) << away;
        EXPECT_NEAR(at(kX + away, kY), at(kX, kY + away), 1) << away;
    }
    int sum = 0;
    for (std::size_t i = 0; i < blurred.size(); i += 4)
        sum += blurred[i];
    EXPECT_NEAR(sum, 9 * 255, 9 * 25);
}

// A graph that draws a late part of a long clip begins there at once.
TEST_F(ShaderPack, AGraphThatBeginsLateShowsAParticleSceneAsItIsThen)
{
    host::GraphDescription description;
    description.append("particles-sparks");
    description.finish();
    const auto showAt = [&](std::initializer_list<double> times) {
        host::EffectGraph graph(description, kWidth, kHeight);
        graph.setSource(*first);
        Bytes shown;
        for (const double seconds : times) {
            const auto bytes = host::bytesOf(graph.run({.seconds = seconds, .total = 1000}));
            shown.assign(bytes.begin(), bytes.end());
        }
        return shown;
    };
    EXPECT_TRUE(showAt({450}) == showAt({90, 180, 270, 360, 450}));
}

} // namespace
