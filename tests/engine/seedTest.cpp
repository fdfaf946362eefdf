// EFFECTENGINE_SEED: pictures of random effects repeat, whatever was shown before them.
#include "core/Clock.h"
#include "core/Random.h"
#include "engine/effectList.h"
#include "support/EngineFixture.h"
#include "support/Environment.h"
#include "support/GuardedFrame.h"

#include <array>
#include <ctime>
#include <thread>

namespace {

constexpr const char* kNoise = "EA2DCED2-D88D-402c-9D70-108FAA8C76D8"; // of the numeric library
constexpr const char* kWind = "7E154FAA-91D3-4002-AEDD-9EBA2201711E";
constexpr const char* kRainDrop = "D0A14E0A-298C-4adb-B82D-FDADA4E48A01";
struct Size {
    int width = 48;
    int height = 36;
};

using Bytes = std::vector<u8>;

class Seed : public testing::Test {
protected:
    Seed() { test::useNoGraphics(); }
    ~Seed() override
    {
        stop();
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    }

    void start(const char* seed)
    {
        stop();
        const test::Environment environment("EFFECTENGINE_SEED", seed);
        ASSERT_EQ(InitializeEngine("./", nullptr), 0u);
    }
    /// With a start that has no seed after it, so that other tests find the clock running.
    static void stop()
    {
        UninitializeEngine();
        InitializeEngine("./", nullptr);
        UninitializeEngine();
    }

    /// All frames of a new node, one after the other.
    static Bytes show(const std::string& guid, int frames = 12, Size size = {})
    {
        std::array<test::GuardedFrame, 2> inputs{
            test::GuardedFrame(size.width, size.height), test::GuardedFrame(size.width, size.height)};
        host::Filter filter(guid, size.width, size.height);
        filter.set(kEffectTotalTime, 2.0f);
        Bytes shown;
        for (int frame = 0; frame < frames; ++frame) {
            for (unsigned i = 0; i < 2; ++i) {
                inputs[i].fillWithNoise(i + 3);
                SetInputImage(filter.handle(), inputs[i].image(), i);
            }
            filter.set(kEffectCurrentTime, 0.5f + float(frame) / 25);
            const auto bytes = host::bytesOf(filter.run());
            shown.insert(shown.end(), bytes.begin(), bytes.end());
        }
        return shown;
    }
};

TEST_F(Seed, GivesEveryRandomEffectTheSamePicturesWhateverCameBefore)
{
    start("5");
    std::map<std::string, Bytes> first;
    for (const KEXSDK::EffectInfo& effect : listEffects())
        if (effect.random && !effect.needsGpu && !effect.shared)
            first[effect.guid] = show(effect.guid);
    ASSERT_GT(first.size(), 20u);
    for (auto effect = first.rbegin(); effect != first.rend(); ++effect)
        EXPECT_TRUE(show(effect->first) == effect->second) << effect->first;
    Bytes elsewhere;
    std::thread([&] { elsewhere = show(kNoise); }).join();
    EXPECT_TRUE(elsewhere == first[kNoise]) << "on another thread";
    start("6");
    EXPECT_FALSE(show(kNoise) == first[kNoise]);
    start("5");
    EXPECT_TRUE(show(kNoise) == first[kNoise]) << "after a start with another seed";
}

TEST_F(Seed, RestartsTheRain)
{
    start("5");
    constexpr Size kPond{200, 160}; // a drop has room in it
    const Bytes alone = show(kRainDrop, 25, kPond);
    show(kRainDrop, 3, kPond);
    EXPECT_TRUE(show(kRainDrop, 25, kPond) == alone);
}

// Where the numbers begin is what existing pictures of `--seed` were made with.
TEST_F(Seed, BeginsWithTheStateBehindTheTableWhereTheGraphHasALibraryEffect)
{
    start("41");
    pixels::RandomGenerator behindTable(41);
    behindTable.skip(1024);
    const auto next = [](pixels::RandomGenerator generator) { return generator.next(); };
    {
        const host::Filter wind(kWind, 8, 8);
        EXPECT_EQ(next(pixels::threadRandom()), next(pixels::RandomGenerator(1)));
    }
    {
        const host::Filter noise(kNoise, 8, 8);
        const host::Filter wind(kWind, 8, 8);
        EXPECT_EQ(next(pixels::threadRandom()), next(behindTable));
    }
    const host::Filter wind(kWind, 8, 8);
    EXPECT_EQ(next(pixels::threadRandom()), next(pixels::RandomGenerator(1))) << "a graph of its own";
}

TEST_F(Seed, PinsTheClockAndWithoutOneItRuns)
{
    for (const char* const seed : {"0", "-7", "1700000000", "9223372036854775807", "-9223372036854775808"}) {
        start(seed);
        EXPECT_EQ(std::to_string(core::now()), seed);
    }
    for (const char* const none : {static_cast<const char*>(nullptr), ""}) {
        start(none);
        EXPECT_LE(std::abs(core::now() - std::time(nullptr)), 2);
        show(kNoise);
        const pixels::RandomGenerator before = pixels::threadRandom();
        const host::Filter next(kWind, 8, 8);
        EXPECT_EQ(
            pixels::RandomGenerator(before).next(), pixels::RandomGenerator(pixels::threadRandom()).next())
            << "nothing starts anew";
    }
}

} // namespace
