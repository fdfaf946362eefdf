// One sweep over everything registered: odd sizes, parameters at their ends and beyond, guard bytes, and the
// promises that neither threads nor vector width show in the bytes, nor that an input is the output, too.
#include "core/Clock.h"
#include "core/Random.h"
#include "effects/am/looks/brokenTelevision.h"
#include "effects/cpu/WaterSurface.h"
#include "engine/effectList.h"
#include "hosting/exampleValues.h"
#include "pixels/widest.h"
#include "support/EngineFixture.h"
#include "support/FilesInMemory.h"
#include "support/GuardedFrame.h"
#include "support/allocationCount.h"

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <array>
#include <limits>
#include <memory>
#include <random>

namespace {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

class Sweep : public test::EngineWithoutGpu {
protected:
    // Hides the fixture's function of this name: here effects find overlays and textures.
    static void SetUpTestSuite()
    {
        test::useFilesOfNoise();
        ASSERT_EQ(InitializeEngine("./", nullptr), 0u);
    }
    void SetUp() override { core::pinTime(1'700'000'000); }
    void TearDown() override { core::pinTime(std::nullopt); }
};

struct Frames {
    Frames(const EffectInfo& effect, int width, int height) : output(width, height)
    {
        for (u32 i = 0; i < effect.inputs; ++i) {
            inputs.push_back(std::make_unique<test::GuardedFrame>(width, height));
            inputs.back()->fillWithNoise(100 + i);
        }
    }
    std::vector<std::unique_ptr<test::GuardedFrame>> inputs;
    test::GuardedFrame output;
};

// The image that frames are drawn into: an empty one, one that holds the bytes of an input, or that input
// itself.
struct Target {
    enum class Kind { empty, copyOfInput, input } kind = Kind::empty;
    u32 input = 0;
};

// Draws some frames of a fresh node into guarded memory. @return the bytes of the last one
template <class Prepare>
std::vector<u8> render(
    const EffectInfo& effect, int width, int height, Prepare prepare, int frameCount = 2, Target target = {})
{
    // State that all nodes of the thread, or of the process, share.
    pixels::threadRandom().seed(1);
    pixels::restartRain();
    KEXSDK::am::restartTelevision();
    Frames frames(effect, width, height);
    std::vector<std::vector<u8>> before;
    host::Filter filter(effect.guid, width, height);
    for (u32 i = 0; i < effect.inputs; ++i) {
        before.push_back(frames.inputs[i]->bytes());
        SetInputImage(filter.handle(), frames.inputs[i]->image(), i);
    }
    const bool inPlace = target.kind == Target::Kind::input;
    test::GuardedFrame& output = inPlace ? *frames.inputs[target.input] : frames.output;
    prepare(filter);
    for (int frame = 0; frame < frameCount; ++frame) {
        filter.set(kEffectCurrentTime, 1.5f + float(frame) * 0.25f);
        if (target.kind != Target::Kind::empty)
            std::ranges::copy(before[target.input], output.pixels());
        EXPECT_EQ(DoFilterEx(filter.handle(), output.image()), 0u);
    }
    EXPECT_TRUE(output.guardsIntact());
    for (u32 i = 0; i < effect.inputs; ++i)
        EXPECT_TRUE(before[i] == frames.inputs[i]->bytes() || !effect.writesInput.empty()
            || (inPlace && i == target.input))
            << "input " << i << " was written";
    return output.bytes();
}

// True when an effect draws into its own input what it draws into another image.
template <class Prepare>
bool looksTheSameInPlace(
    const EffectInfo& effect, int width, int height, Prepare prepare, int frameCount, u32 input = 0)
{
    const auto drawn = [&](Target::Kind kind) {
        return render(effect, width, height, prepare, frameCount, {kind, input});
    };
    return drawn(Target::Kind::copyOfInput) == drawn(Target::Kind::input);
}

// Effects that draw something else when an input is the output.
struct Exception {
    std::string_view name;
    std::string_view reason;
};
constexpr Exception kChangedInPlace[] = {
    {"light-room", "in one image only its steps after the colours run"},
};

bool mayChangeInPlace(const EffectInfo& effect)
{
    return std::ranges::find(kChangedInPlace, effect.name, &Exception::name) != std::end(kChangedInPlace);
}

constexpr pixels::Extent kSizes[] = {{1, 1}, {1, 9}, {2, 3}, {7, 5}, {33, 17}, {64, 48}};

std::vector<double> extremes(const ParamInfo& param)
{
    const bool real = param.type == ParamType::real || param.type == ParamType::realArray;
    std::vector<double> values{param.low, param.high, param.low - 1, param.high * 3 + 1, 0};
    if (real) {
        for (const float value :
            {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                -std::numeric_limits<float>::infinity(), 1e30f, -1e30f})
            values.push_back(double(value));
    } else {
        values.push_back(std::numeric_limits<int>::max());
        values.push_back(std::numeric_limits<int>::min());
    }
    return values;
}

void store(host::Filter& filter, const ParamInfo& param, double value)
{
    switch (param.type) {
    case ParamType::integer:
        filter.set(param.name, int(value));
        break;
    case ParamType::real:
        filter.set(param.name, float(value));
        break;
    case ParamType::integerArray:
        filter.set(param.name, std::vector<int>(param.elements, int(value)));
        break;
    case ParamType::realArray:
        filter.set(param.name, std::vector<float>(param.elements, float(value)));
        break;
    case ParamType::filePath:
        break;
    }
}

TEST_F(Sweep, EveryEffectBearsEveryParameterAtEverySize)
{
    for (const EffectInfo& effect : listEffects()) {
        if (effect.needsGpu)
            continue;
        SCOPED_TRACE(effect.name);
        const auto params = describeParameters(effect.guid);
        for (const auto [width, height] : kSizes) {
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            const auto examples = [&](host::Filter& filter) {
                host::setExampleValues(filter, params, u32(width), u32(height));
            };
            render(effect, width, height, examples);
            for (const ParamInfo* param : params) {
                if (std::string_view(param->name) == kEffectEnable)
                    continue;
                for (const double value : extremes(*param)) {
                    SCOPED_TRACE(testing::Message() << param->name << " = " << value);
                    render(
                        effect, width, height,
                        [&](host::Filter& filter) {
                            examples(filter);
                            store(filter, *param, value);
                        },
                        1);
                }
            }
        }
    }
}

TEST_F(Sweep, ThreadsAndVectorsNeverShowInTheBytes)
{
    constexpr int kWidth = 333;
    constexpr int kHeight = 301; // several tasks, and no multiple of any vector
#ifdef __SANITIZE_THREAD__ // which finds races in one run of each effect, and takes a hundred times as long
    constexpr std::array kLevels{pixels::VectorLevel::avx2};
    constexpr std::array kThreads{7};
#else
    constexpr std::array kLevels{
        pixels::VectorLevel::base, pixels::VectorLevel::avx2, pixels::VectorLevel::avx512};
    constexpr std::array kThreads{1, 2, 3, 7};
#endif
    for (const EffectInfo& effect : listEffects()) {
        if (effect.needsGpu)
            continue;
        const auto params = describeParameters(effect.guid);
        const auto run = [&](int threads, pixels::VectorLevel vectors) {
            const tbb::global_control allowed(
                tbb::global_control::max_allowed_parallelism, std::size_t(threads));
            tbb::task_arena arena(threads); // more of them than there are processors, too
            pixels::limitVectors(vectors);
            auto bytes = arena.execute([&] {
                return render(
                    effect, kWidth, kHeight,
                    [&](host::Filter& filter) { host::setExampleValues(filter, params, kWidth, kHeight); },
                    3);
            });
            pixels::limitVectors(pixels::VectorLevel::avx512);
            return bytes;
        };
        const auto plain = run(1, pixels::VectorLevel::base);
        for (const auto vectors : kLevels)
            for (const int threads : kThreads)
                EXPECT_TRUE(plain == run(threads, vectors))
                    << effect.name << " with " << threads << " threads, vectors " << int(vectors);
    }
}

TEST_F(Sweep, ChainsInOneImageLookTheSame)
{
    constexpr int kWidth = 333;
    constexpr int kHeight = 211; // enough for walks to start in two places, which they do not in place
    for (const EffectInfo& effect : listEffects()) {
        if (effect.needsGpu)
            continue;
        SCOPED_TRACE(effect.name);
        const auto params = describeParameters(effect.guid);
        const auto examples = [&](host::Filter& filter) {
            host::setExampleValues(filter, params, kWidth, kHeight);
        };
        for (u32 input = 0; input < effect.inputs; ++input)
            EXPECT_NE(
                looksTheSameInPlace(effect, kWidth, kHeight, examples, 2, input), mayChangeInPlace(effect))
                << "input " << input;
    }
}

TEST_F(Sweep, ParametersAtTheirEndsLookTheSameInOneImage)
{
    for (const EffectInfo& effect : listEffects()) {
        if (effect.needsGpu || mayChangeInPlace(effect))
            continue;
        const auto params = describeParameters(effect.guid);
        for (const ParamInfo* param : params) {
            for (const double value : extremes(*param)) {
                const auto prepare = [&](host::Filter& filter) {
                    host::setExampleValues(filter, params, 33, 17);
                    store(filter, *param, value);
                };
                EXPECT_TRUE(looksTheSameInPlace(effect, 33, 17, prepare, 1))
                    << effect.name << ", " << param->name << " = " << value;
            }
        }
    }
}

TEST_F(Sweep, ADisabledNodePassesItsInputThrough)
{
    for (const EffectInfo& effect : listEffects()) {
        if (effect.needsGpu)
            continue;
        test::GuardedFrame input(7, 5);
        input.fillWithNoise(3);
        host::Filter filter(effect.guid, 7, 5);
        SetInputImage(filter.handle(), input.image(), 0);
        filter.set(kEffectEnable, 0);
        const auto output = host::bytesOf(filter.run());
        EXPECT_TRUE(std::ranges::equal(output, input.bytes())) << effect.name;
    }
}

TEST_F(Sweep, SteadyFramesAllocateNothing)
{
    if (!test::kCountsAllocations)
        GTEST_SKIP() << "the sanitizer's own operator new does not count";
    constexpr int kWidth = 333;
    constexpr int kHeight = 301;
    for (const EffectInfo& effect : listEffects()) {
        if (effect.needsGpu)
            continue;
        Frames frames(effect, kWidth, kHeight);
        host::Filter filter(effect.guid, kWidth, kHeight);
        host::setExampleValues(filter, describeParameters(effect.guid), kWidth, kHeight);
        for (u32 i = 0; i < effect.inputs; ++i)
            SetInputImage(filter.handle(), frames.inputs[i]->image(), i);
        filter.set(kEffectCurrentTime, 1.5f);
        for (int warmUp = 0; warmUp < 4; ++warmUp)
            filter.run();
        const std::size_t before = test::allocationCount();
        filter.run();
        EXPECT_EQ(test::allocationCount(), before) << effect.name;
    }
}

TEST_F(Sweep, NamesAndGuidsAreUnique)
{
    std::map<std::string, std::string> seen;
    for (const EffectInfo& effect : listEffects()) {
        for (const std::string& key : {effect.guid, effect.name}) {
            EXPECT_TRUE(seen.emplace(key, effect.title).second) << key << " stands twice";
            EXPECT_EQ(findEffect(key)->guid, effect.guid);
        }
        EXPECT_FALSE(effect.summary.empty()) << effect.name;
        EXPECT_EQ(effect.name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"), std::string::npos)
            << effect.name;
    }
}

} // namespace
