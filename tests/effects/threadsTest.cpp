// Graphs on several threads at once: every effect gives the bytes that it gives alone.
#include "core/Clock.h"
#include "core/Random.h"
#include "engine/effectList.h"
#include "hosting/exampleValues.h"
#include "support/EngineFixture.h"
#include "support/GuardedFrame.h"
#include "support/TemporaryDirectory.h"
#include "support/paths.h"

#include <latch>
#include <set>
#include <thread>

namespace {

using KEXSDK::EffectInfo;

constexpr int kGraphs = 4;
constexpr int kFrames = 3;

// Draws some frames of a graph of its own as on a thread that has drawn nothing yet.
std::vector<u8> show(const EffectInfo& effect, int width, int height)
{
    pixels::threadRandom().seed(1);
    std::vector<std::unique_ptr<test::GuardedFrame>> inputs;
    host::Filter filter(effect.guid, width, height);
    host::setExampleValues(filter, describeParameters(effect.guid), u32(width), u32(height));
    for (u32 i = 0; i < effect.inputs; ++i) {
        inputs.push_back(std::make_unique<test::GuardedFrame>(width, height));
        inputs.back()->fillWithNoise(7 + i);
        SetInputImage(filter.handle(), inputs.back()->image(), i);
    }
    std::vector<u8> shown;
    for (int frame = 0; frame < kFrames; ++frame) {
        filter.set(kEffectCurrentTime, 1.25f + float(frame) / 25);
        const auto bytes = host::bytesOf(filter.run());
        shown.insert(shown.end(), bytes.begin(), bytes.end());
    }
    return shown;
}

void expectSameOnFourThreads(const EffectInfo& effect, int width, int height)
{
    const std::vector<u8> alone = show(effect, width, height);
    std::latch together(kGraphs);
    std::vector<u8> shown[kGraphs];
    {
        std::vector<std::jthread> threads;
        for (auto& bytes : shown)
            threads.emplace_back([&] {
                together.arrive_and_wait();
                bytes = show(effect, width, height);
            });
    }
    if (effect.shared)
        return; // nodes that share state promise only to be safe
    for (const auto& bytes : shown)
        EXPECT_TRUE(bytes == alone) << effect.name;
}

class Threads : public test::EngineWithoutGpu {
protected:
    void SetUp() override { core::pinTime(1'700'000'000); }
    void TearDown() override { core::pinTime(std::nullopt); }
};

TEST_F(Threads, GraphsOnFourOfThemGiveTheBytesOfOne)
{
    std::set<std::string> shared;
    for (const EffectInfo& effect : listEffects()) {
        if (effect.needsGpu)
            continue;
        expectSameOnFourThreads(effect, 160, 120);
        if (effect.shared)
            shared.insert(effect.name);
    }
    EXPECT_EQ(shared, (std::set<std::string>{"am-bad-tv-signal", "camcorder", "dissolve-2", "rain-drop"}));
}

// All nodes share one order of pixels, which changes with the size while others draw with the one before.
TEST_F(Threads, NodesOfOneSharedOrderMayDifferInSize)
{
    const EffectInfo& effect = *findEffect("dissolve-2");
    std::vector<u8> alone[kGraphs];
    for (int i = 0; i < kGraphs; ++i)
        alone[i] = show(effect, 100 + i, 80 + i);
    std::vector<std::jthread> threads;
    for (int i = 0; i < kGraphs; ++i)
        threads.emplace_back([&, i] {
            for (int run = 0; run < 10; ++run)
                EXPECT_TRUE(show(effect, 100 + i, 80 + i) == alone[i]) << "size " << i;
        });
}

TEST(ThreadsOnTheGpu, GraphsOnFourOfThemGiveTheBytesOfOne)
{
    unsetenv("DISPLAY");
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    listShaderEffectsOf(test::kResourceDirectory);
    {
        const test::TemporaryDirectory logs;
        const host::Engine engine(test::kResourceDirectory, logs.path().c_str());
        ASSERT_TRUE(KEXSDK::gpuAvailable());
        for (const EffectInfo& effect : listEffects())
            if (effect.needsGpu)
                expectSameOnFourThreads(effect, 64, 48);
    }
    listShaderEffectsOf("");
}

} // namespace
