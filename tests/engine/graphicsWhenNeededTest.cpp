// EFFECTENGINE_GRAPHICS=when-needed: the graphics system starts once, with the first call that cannot do
// without.
#include "gpu/FakeGraphicsSystem.h"
#include "shader/ShaderEngine.h"
#include "support/Environment.h"

#include <thread>

namespace {

constexpr const char* kBlackAndWhite = "DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A";
constexpr const char* kLightRoom = "CB87BAF6-5462-4877-BE55-C2A95D8FAF2A";

class GraphicsWhenNeeded : public test::ShaderEngine {
protected:
    GraphicsWhenNeeded()
    {
        describe(0, "");
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory(
            [this] { return std::make_unique<FakeGraphicsSystem>(diary_); });
    }
    ~GraphicsWhenNeeded() override
    {
        engine.reset();
        engine.emplace(files.path(), nullptr); // without the variables, for other tests
        engine.reset();
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    }

    void open(const char* path = nullptr)
    {
        const test::Environment graphics("EFFECTENGINE_GRAPHICS", "when-needed");
        const test::Environment form("EFFECTENGINE_PATH", path);
        engine.emplace(files.path(), nullptr);
    }

    static void show(const std::string& guid)
    {
        const auto input = plain(8, 8, {10, 20, 30, 255});
        host::Filter filter(guid, 8, 8);
        filter.setInput(input);
        filter.run();
    }
    static bool isKnown(const std::string& guid)
    {
        CSimpleEffect* node = nullptr;
        const bool known = GetFilter(guid.c_str(), 8, 8, &node) == EFFECTENGINE_OK;
        if (known)
            ReleaseFilter(node);
        return known;
    }

    Diary diary_;
};

TEST_F(GraphicsWhenNeeded, EffectsOfTheCpuStartNothing)
{
    open("cpu");
    show(kBlackAndWhite);
    show(kLightRoom);
    engine.reset();
    EXPECT_EQ(diary_.starts, 0);
    open();
    show(kBlackAndWhite);
    engine.reset();
    EXPECT_EQ(diary_.starts, 0);
}

TEST_F(GraphicsWhenNeeded, WhatNeedsItStartsItOnceInTheEnginesDirectories)
{
    const unsigned size[2] = {8, 8};
    const std::string start = "start " + files.path() + "|" + files.path() + "||0";
    const std::function<void()> users[] = {
        [] { show(guid(0)); },
        [] { show(kLightRoom); }, // which form it takes is up to the renderer
        [&] {
            CEffectImage* image = nullptr;
            EXPECT_EQ(CreateImageFromFile("a", size, &image), 0u);
            ReleaseImage(image);
        },
    };
    for (const auto& use : users) {
        diary_.starts = 0;
        open("auto");
        diary_.taken();
        use();
        EXPECT_EQ(diary_.starts, 1);
        EXPECT_EQ(diary_.taken().front(), start);
        use();
        EXPECT_TRUE(isKnown(guid(0)));
        EXPECT_EQ(diary_.starts, 1);
        engine.reset();
        EXPECT_EQ(diary_.systems, 0);
    }
}

TEST_F(GraphicsWhenNeeded, TheVariablesAreThoseOfTheEnginesStart)
{
    diary_.renderer = "llvmpipe (LLVM 15.0.6, 256 bits)";
    open("auto");
    const test::Environment later("EFFECTENGINE_PATH", "gpu");
    show(kLightRoom);
    for (const std::string& line : diary_.taken())
        EXPECT_FALSE(line.starts_with("create")) << line;
}

TEST_F(GraphicsWhenNeeded, AStartThatFailsLeavesTheOthersWorkingAndIsNotRepeated)
{
    diary_.startWorks = false;
    open("auto");
    EXPECT_FALSE(isKnown(guid(0)));
    EXPECT_FALSE(isKnown(guid(0)));
    show(kBlackAndWhite);
    show(kLightRoom);
    EXPECT_EQ(diary_.starts, 1);
    engine.reset();
    diary_.startWorks = true;
    open();
    EXPECT_TRUE(isKnown(guid(0)));
}

TEST_F(GraphicsWhenNeeded, ThreadsThatNeedItAtOnceStartItOnce)
{
    for (int round = 0; round < 20; ++round) {
        diary_.starts = 0;
        open("auto");
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([i] { show(i % 2 ? guid(0) : kLightRoom); });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(diary_.starts, 1);
        engine.reset();
    }
}

} // namespace
