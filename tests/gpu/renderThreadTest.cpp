// The render thread's promises, with a graphics system that has no GPU behind it.
#include "gpu/FakeGraphicsSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>

namespace {

using Lines = std::vector<std::string>;
using namespace std::chrono_literals;

/// Ends the program when the work hangs: a thread that waits for ever cannot be got rid of otherwise.
template <class Work> void finishes(Work work)
{
    std::promise<void> done;
    std::thread watched([&] {
        work();
        done.set_value();
    });
    if (done.get_future().wait_for(60s) != std::future_status::ready) {
        std::fputs("A request has been waiting for a minute.\n", stderr);
        std::abort();
    }
    watched.join();
}

class RenderThreadTest : public testing::Test {
protected:
    RenderThreadTest()
    {
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory(
            [this] { return std::make_unique<FakeGraphicsSystem>(diary_); });
        KEXSDK::TovOgreRenderThread::getInstance().shutdown(); // whatever an earlier test left behind
        diary_.taken();
        diary_.starts = 0;
        diary_.threads.clear();
    }
    ~RenderThreadTest() override
    {
        EXPECT_EQ(diary_.systems, 0);
        EXPECT_EQ(diary_.effects, 0);
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    }

    Diary diary_;
};

TEST_F(RenderThreadTest, CarriesOutRequestsInOrderOnOneThreadOfItsOwn)
{
    u8 buffer[4]{};
    {
        KEXSDK::TovOgreRenderThread thread("res/", "plug/", nullptr);
        EXPECT_TRUE(KEXSDK::gpuAvailable());
        EXPECT_EQ(KEXSDK::maxTextureSize(), 4321u);
        EXPECT_TRUE(KEXSDK::gpuCapabilities().textures3D);
        EXPECT_EQ(&KEXSDK::TovOgreRenderThread::getInstance(), &thread);
        KEXSDK::TovEffectBase* const effect = thread.createEffect();
        ASSERT_NE(effect, nullptr);
        KEXSDK::_ImageParam* output = nullptr;
        EXPECT_EQ(thread.evaluateEffect(effect, &output, buffer), 1u);
        EXPECT_NE(output, nullptr);
        EXPECT_EQ(thread.loadImage("picture")->bytes()[5], 'e');
        EXPECT_TRUE(thread.saveImage("file.png", buffer, 1, 1));
    }
    EXPECT_EQ(diary_.taken(),
        (Lines{"start res/|plug/||0", "create TovOgrePaticalUniverseEffect", "render 1 into buffer 4",
            "load picture", "save file.png 1x1 12", "log Delete all effect!", "destroy 1", "end"}));
    EXPECT_EQ(diary_.threads.size(), 1u);
    EXPECT_FALSE(diary_.threads.contains(std::this_thread::get_id()));
}

TEST_F(RenderThreadTest, DeletesTheEffectAskedForAndAtTheEndTheOthersFromTheFirstToTheLast)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    KEXSDK::TovEffectBase* const effects[] = {
        thread.createEffect(), thread.createEffect(), thread.createEffect()};
    diary_.taken();
    EXPECT_EQ(thread.deleteEffect(effects[1]), 1u);
    EXPECT_EQ(thread.deleteEffect(effects[1]), 1u) << "the request is made, though nothing is left to delete";
    EXPECT_EQ(thread.deleteEffect(nullptr), 0u);
    EXPECT_EQ(diary_.taken(), (Lines{"destroy 2", "log Error: This effect is NULL!"}));
    EXPECT_EQ(thread.shutdown(), 1u);
    EXPECT_EQ(diary_.taken(), (Lines{"log Delete all effect!", "destroy 1", "destroy 3", "end"}));
    EXPECT_EQ(thread.shutdown(), 0u);
}

TEST_F(RenderThreadTest, IgnoresEffectsThatOutlivedTheThreadThatMadeThem)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    KEXSDK::TovEffectBase* const old = thread.createEffect();
    KEXSDK::_ImageParam record;
    record.gpuOwner = old;
    KEXSDK::_ImageParam* slot = &record;
    thread.shutdown();
    KEXSDK::TovOgreRenderThread again("", "", "");
    diary_.taken();
    again.evaluateEffect(old, &slot, nullptr);
    again.readBack(&record);
    again.deleteEffect(old);
    EXPECT_EQ(diary_.taken(), Lines{});
}

TEST_F(RenderThreadTest, ReadsBackOnlyWhatAnEffectOwns)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    KEXSDK::_ImageParam owned, plain;
    owned.gpuOwner = thread.createEffect();
    diary_.taken();
    EXPECT_EQ(thread.readBack(&owned), 1u);
    EXPECT_EQ(thread.readBack(&plain), 1u);
    EXPECT_EQ(thread.readBack(nullptr), 0u);
    EXPECT_EQ(diary_.taken(), Lines{"getPixels 1 record 4"});
}

TEST_F(RenderThreadTest, MissingArgumentsMakeNoRequest)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    KEXSDK::_ImageParam* slot = nullptr;
    const u8 pixel[4]{};
    diary_.taken();
    EXPECT_FALSE(thread.saveImage(nullptr, pixel, 1, 1));
    EXPECT_FALSE(thread.saveImage("a.png", nullptr, 1, 1));
    EXPECT_FALSE(thread.loadImage(nullptr));
    EXPECT_EQ(thread.evaluateEffect(nullptr, &slot, nullptr), 0u);
    EXPECT_EQ(diary_.taken(), Lines{});
    diary_.knowsClasses = false;
    EXPECT_EQ(thread.createEffect(), nullptr);
}

TEST_F(RenderThreadTest, AFailedStartLeavesEveryRequestWithoutEffect)
{
    for (const char* const how : {"", "start"}) {
        diary_.startWorks = false;
        diary_.throwIn = how;
        KEXSDK::TovOgreRenderThread thread("", "", "");
        EXPECT_FALSE(KEXSDK::gpuAvailable());
        EXPECT_EQ(diary_.taken(), (Lines{"start |||0", "log Initialze Ogre failed!", "end"}));
        finishes([&] {
            KEXSDK::_ImageParam record;
            KEXSDK::_ImageParam* slot = &record;
            const u8 pixel[4]{};
            FakeEffect never(diary_);
            EXPECT_EQ(thread.createEffect(), nullptr);
            EXPECT_FALSE(thread.loadImage("a"));
            EXPECT_FALSE(thread.saveImage("a.png", pixel, 1, 1));
            EXPECT_EQ(thread.evaluateEffect(&never, &slot, nullptr), 0u);
            EXPECT_EQ(thread.readBack(&record), 0u);
            EXPECT_EQ(thread.deleteEffect(&never), 0u);
        });
        diary_.taken();

        // A later initialisation tries again, whether or not the failed object still exists.
        diary_.startWorks = true;
        diary_.throwIn.clear();
        KEXSDK::TovOgreRenderThread later("", "", "");
        EXPECT_TRUE(KEXSDK::gpuAvailable());
        EXPECT_EQ(&KEXSDK::TovOgreRenderThread::getInstance(), &later);
        later.shutdown();
        diary_.taken();
    }
}

TEST_F(RenderThreadTest, WhoeverComesFirstStartsTheThreadAndAFailureIsNotRepeated)
{
    diary_.startWorks = false;
    KEXSDK::TovOgreRenderThread& instance = KEXSDK::TovOgreRenderThread::getInstance();
    EXPECT_FALSE(KEXSDK::gpuAvailable());
    EXPECT_FALSE(KEXSDK::TovOgreRenderThread::getInstance().loadImage("a"));
    EXPECT_EQ(&KEXSDK::TovOgreRenderThread::getInstance(), &instance);
    EXPECT_EQ(diary_.starts, 1);
    EXPECT_EQ(instance.shutdown(), 1u);
    EXPECT_TRUE(KEXSDK::gpuAvailable());

    diary_.startWorks = true;
    std::vector<std::thread> users;
    for (int i = 0; i < 8; ++i)
        users.emplace_back([] { EXPECT_TRUE(KEXSDK::TovOgreRenderThread::getInstance().loadImage("a")); });
    for (std::thread& user : users)
        user.join();
    EXPECT_EQ(diary_.starts, 2);
    KEXSDK::TovOgreRenderThread::getInstance().shutdown();
}

TEST_F(RenderThreadTest, StartsAnewAfterEveryShutdown)
{
    for (int i = 0; i < 50; ++i) {
        if (i % 2) {
            KEXSDK::TovOgreRenderThread thread("", "", "");
            EXPECT_TRUE(thread.loadImage("x"));
        } else {
            EXPECT_TRUE(KEXSDK::TovOgreRenderThread::getInstance().loadImage("x"));
            EXPECT_EQ(KEXSDK::TovOgreRenderThread::getInstance().shutdown(), 1u);
        }
        EXPECT_TRUE(KEXSDK::gpuAvailable());
        EXPECT_EQ(diary_.systems, 0);
    }
    EXPECT_EQ(diary_.starts, 50);
}

TEST_F(RenderThreadTest, EndsByItselfWhenAWindowIsClosed)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    KEXSDK::TovEffectBase* const first = thread.createEffect();
    thread.createEffect();
    diary_.taken();
    diary_.windowCloses = true;
    finishes([&] {
        KEXSDK::_ImageParam* slot = nullptr;
        EXPECT_EQ(thread.evaluateEffect(first, &slot, nullptr), 1u);
        EXPECT_EQ(
            diary_.taken(), (Lines{"render 1 4", "log Delete all effect!", "destroy 1", "destroy 2", "end"}));
        EXPECT_FALSE(KEXSDK::gpuAvailable());
        EXPECT_EQ(thread.evaluateEffect(first, &slot, nullptr), 0u);
        EXPECT_EQ(thread.deleteEffect(first), 0u);
        EXPECT_FALSE(KEXSDK::TovOgreRenderThread::getInstance().loadImage("a"));
        EXPECT_EQ(thread.createEffect(), nullptr);
    });
    diary_.windowCloses = false;
    {
        KEXSDK::TovOgreRenderThread later("", "", "");
        EXPECT_TRUE(KEXSDK::gpuAvailable());
        KEXSDK::TovEffectBase* const effect = later.createEffect();
        KEXSDK::_ImageParam* slot = nullptr;
        EXPECT_EQ(later.evaluateEffect(effect, &slot, nullptr), 1u) << "the closed window is forgotten";
        EXPECT_NE(slot, nullptr);
    }
}

TEST_F(RenderThreadTest, ARequestThatThrowsReleasesItsRequester)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    KEXSDK::TovEffectBase* const effect = thread.createEffect();
    finishes([&] {
        KEXSDK::_ImageParam* slot = nullptr;
        const u8 pixel[4]{};
        diary_.throwIn = "create";
        EXPECT_EQ(thread.createEffect(), nullptr);
        diary_.throwIn = "load";
        EXPECT_FALSE(thread.loadImage("a")->hasData());
        diary_.throwIn = "save";
        EXPECT_FALSE(thread.saveImage("a.png", pixel, 1, 1));
        diary_.throwIn = "render";
        thread.evaluateEffect(effect, &slot, nullptr);
        EXPECT_EQ(slot, nullptr);
        diary_.throwIn.clear();
        EXPECT_TRUE(thread.loadImage("a")->hasData());
    });
}

TEST_F(RenderThreadTest, NobodyDisturbsALoadedImageWhileItIsHeld)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    std::vector<std::thread> users;
    std::atomic<int> disturbed = 0;
    for (char name = 'a'; name < 'e'; ++name)
        users.emplace_back([&, name] {
            for (int i = 0; i < 200; ++i) {
                const KEXSDK::LoadedImage moved = thread.loadImage(std::string(20, name).c_str());
                const auto bytes = moved->bytes();
                std::this_thread::yield();
                disturbed += !std::ranges::all_of(bytes, [&](u8 byte) { return byte == u8(name); });
            }
        });
    for (std::thread& user : users)
        user.join();
    EXPECT_EQ(disturbed, 0);
    EXPECT_EQ(diary_.threads.size(), 1u);
}

TEST_F(RenderThreadTest, HoldingALoadedImageRefusesTheHoldersRequestsAndDelaysTheOthers)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    finishes([&] {
        std::atomic<bool> otherDone = false;
        std::thread other;
        {
            const KEXSDK::LoadedImage held = thread.loadImage("a");
            EXPECT_FALSE(thread.loadImage("b"));
            EXPECT_EQ(thread.createEffect(), nullptr);
            EXPECT_EQ(thread.shutdown(), 0u);
            other = std::thread([&] {
                EXPECT_EQ(thread.loadImage("c")->bytes()[0], 'c');
                otherDone = true;
            });
            std::this_thread::sleep_for(50ms);
            EXPECT_FALSE(otherDone);
            EXPECT_EQ(held->bytes()[0], 'a');
        }
        other.join();
        EXPECT_TRUE(thread.loadImage("d"));
    });
}

TEST_F(RenderThreadTest, AnEffectThatMakesRequestsWhileItIsDrawnGetsNothing)
{
    KEXSDK::TovOgreRenderThread thread("", "", "");
    KEXSDK::TovEffectBase* const effect = thread.createEffect();
    diary_.duringRender = [] {
        EXPECT_FALSE(KEXSDK::TovOgreRenderThread::getInstance().loadImage("a"));
        EXPECT_EQ(KEXSDK::TovOgreRenderThread::getInstance().shutdown(), 0u);
    };
    finishes([&] {
        KEXSDK::_ImageParam* slot = nullptr;
        EXPECT_EQ(thread.evaluateEffect(effect, &slot, nullptr), 1u);
        EXPECT_NE(slot, nullptr);
    });
}

TEST_F(RenderThreadTest, RequestsThatMeetAShutdownAreServedOrRefusedButNeverLeftWaiting)
{
    finishes([&] {
        std::atomic<bool> stop = false;
        std::vector<std::thread> users;
        for (int i = 0; i < 3; ++i)
            users.emplace_back([&] {
                while (!stop) {
                    const KEXSDK::LoadedImage image =
                        KEXSDK::TovOgreRenderThread::getInstance().loadImage("q");
                    EXPECT_EQ(image ? image->bytes()[0] : 'q', 'q');
                }
            });
        for (int i = 0; i < 100; ++i) {
            KEXSDK::TovOgreRenderThread::getInstance().shutdown();
            std::this_thread::sleep_for(1ms);
        }
        stop = true;
        for (std::thread& user : users)
            user.join();
        KEXSDK::TovOgreRenderThread::getInstance().shutdown();
    });
    EXPECT_GT(diary_.starts, 1);
}

} // namespace
