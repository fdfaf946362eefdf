// Shader effects when there is no GPU, and when it goes away in the middle.
#include "gpu/FakeGraphicsSystem.h"
#include "shader/ShaderEngine.h"
#include "support/EngineFixture.h"

#include <future>
#include <thread>

namespace {

using namespace std::chrono_literals;

constexpr const char* kBlackAndWhite = "DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A";

class WithoutGpu : public test::ShaderEngine {
protected:
    void TearDown() override
    {
        engine.reset();
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    }

    /// An engine whose effects only write a diary.
    void startFake()
    {
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory(
            [this] { return std::make_unique<FakeGraphicsSystem>(diary); });
        engine.emplace(files.path(), nullptr);
    }

    /// False when the work does not end within a time that it could never need.
    static bool ends(std::function<void()> work)
    {
        std::packaged_task<void()> task(std::move(work));
        auto done = task.get_future();
        std::thread worker(std::move(task));
        const bool ended = done.wait_for(30s) == std::future_status::ready;
        ended ? worker.join() : worker.detach();
        return ended;
    }

    Diary diary;
};

TEST_F(WithoutGpu, DescribedEffectsAreUnknownAndTheOthersWork)
{
    describe(0, "");
    test::useNoGraphics();
    engine.emplace(files.path(), nullptr);
    CSimpleEffect* node = nullptr;
    EXPECT_EQ(GetFilter(guid(0).c_str(), 8, 8, &node), 1u);
    EXPECT_EQ(node, nullptr);
    host::Filter grey(kBlackAndWhite, 8, 8);
    const auto input = plain(8, 8, {10, 20, 30, 255});
    grey.setInput(input);
    EXPECT_EQ(middle(grey), (test::Bgra{20, 20, 20, 255}));
}

TEST_F(WithoutGpu, AThreadThatEndsByItselfLeavesNobodyWaiting)
{
    describe(0, "");
    startFake();
    const auto input = noise(8, 8, 1);
    ASSERT_TRUE(ends([&] {
        auto first = filter(0);
        auto second = filter(0);
        first.setInput(input);
        second.setInput(input);
        first.run();
        diary.windowCloses = true;
        first.run(); // its window closes: the render thread ends
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(bytes(first.run()), bytes(input));
            EXPECT_EQ(bytes(second.run()), bytes(input));
        }
        auto late = filter(0); // still registered
        late.setInput(input);
        EXPECT_EQ(bytes(late.run()), bytes(input));
    }));
    EXPECT_EQ(diary.effects, 0);
}

TEST_F(WithoutGpu, TwoThreadsMayDrawAtOnceWhileTheGpuGoesAway)
{
    describe(0, "");
    startFake();
    std::atomic<int> renders = 0;
    diary.duringRender = [&] {
        if (++renders == 50)
            diary.windowCloses = true;
    };
    const auto input = noise(8, 8, 2);
    const auto work = [&] {
        auto node = filter(0);
        node.setInput(input);
        for (int i = 0; i < 200; ++i)
            node.run();
        EXPECT_EQ(bytes(node.run()), bytes(input));
    };
    ASSERT_TRUE(ends([&] {
        std::thread other(work);
        work();
        other.join();
    }));
    EXPECT_EQ(renders, 50);
}

TEST_F(WithoutGpu, NodesMayOutliveTheEngine)
{
    describe(0, "");
    start();
    const auto input = noise(8, 8, 3);
    auto node = std::make_unique<host::Filter>(filter(0));
    node->setInput(input);
    EXPECT_EQ(bytes(node->run()), bytes(input));
    engine.reset();
    EXPECT_TRUE(ends([&] { EXPECT_EQ(bytes(node->run()), bytes(input)); }));
    start(); // the new system's effect must not be taken for the old one
    auto other = filter(0, 16, 16);
    const auto larger = noise(16, 16, 4);
    other.setInput(larger);
    EXPECT_EQ(bytes(node->run()), bytes(input));
    EXPECT_EQ(bytes(other.run()), bytes(larger));
    node.reset();
    EXPECT_EQ(bytes(other.run()), bytes(larger));
}

TEST_F(WithoutGpu, TwoThreadsDrawEachItsOwnPictures)
{
    program(
        0, "uniform sampler2D mSample0;", "gl_FragColor = vec4(texture2D(mSample0, textureCoord).rgb, 1.0);");
    start();
    const auto work = [&](unsigned char shade) {
        const auto input = plain(8, 8, {shade, shade, shade, 255});
        for (int round = 0; round < 10; ++round) {
            auto node = filter(0);
            node.setInput(input);
            for (int i = 0; i < 10; ++i)
                EXPECT_EQ(bytes(node.run()), bytes(input));
        }
    };
    ASSERT_TRUE(ends([&] {
        std::thread other(work, (unsigned char)(10));
        work(200);
        other.join();
    }));
}

} // namespace
