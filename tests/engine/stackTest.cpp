// Every effect on a thread whose stack has the size that the public header asks for: hosts have small ones.
#include "engine/effectList.h"
#include "host/EffectGraph.h"
#include "hosting/exampleValues.h"
#include "support/FilesInMemory.h"

#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <array>
#include <csignal>
#include <cstring>

namespace {

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

constexpr std::size_t kStack = 128 * 1024;

// The effect that runs now, for the line that a child leaves when the stack was too small.
const char* running = "";

extern "C" void tellWhatRan(int)
{
    for (const char* text : {"a stack of 128 kB is too small for ", running, "\n"})
        [[maybe_unused]] const auto written = write(STDERR_FILENO, text, std::strlen(text));
    _exit(1);
}

template <class Body> void* runWithSignalStack(void* body)
{
    static std::array<char, 64 * 1024> memory;
    const stack_t signals{.ss_sp = memory.data(), .ss_flags = 0, .ss_size = memory.size()};
    sigaltstack(&signals, nullptr);
    (*static_cast<Body*>(body))();
    return nullptr;
}

/// Runs body() on a thread with a small stack and ends the process: with 0, or with a line about what was
/// running.
template <class Body> [[noreturn]] void runAndExit(Body body)
{
    struct sigaction action { };
    action.sa_handler = tellWhatRan;
    action.sa_flags = SA_ONSTACK;
    sigaction(SIGSEGV, &action, nullptr);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStack);
    pthread_attr_setguardsize(&attributes, 1024 * 1024); // no frame reaches across it
    pthread_t thread;
    if (pthread_create(&thread, &attributes, runWithSignalStack<Body>, &body) != 0)
        std::exit(2);
    pthread_join(thread, nullptr);
    std::exit(0);
}

// A picture without black or equal pixels, which some effects have less to do with.
host::Image picture(unsigned width, unsigned height)
{
    host::Image image(width, height);
    u32 state = 1;
    for (unsigned char& byte : image.bytes())
        byte = u8((state = state * 1664525 + 1013904223) >> 24);
    return image;
}

// Runs an effect at several times and with each parameter at its ends, alone and with more threads.
void runEffect(const EffectInfo& effect, const host::Image& first, const host::Image& second)
{
    running = effect.name.c_str();
    const auto params = describeParameters(effect.guid);
    host::Filter filter(effect.guid, int(first.width()), int(first.height()));
    filter.setInput(first);
    if (effect.inputs > 1)
        filter.setInput(second, 1);
    host::setExampleValues(filter, params, first.width(), first.height());
    filter.set(kEffectTotalTime, 2.0f);
    for (const float time : {0.0f, 0.5f, 1.0f, 1.5f}) {
        filter.set(kEffectCurrentTime, time);
        for (const std::size_t threads : {1, 4}) {
            const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
            filter.run();
        }
    }
    for (const ParamInfo* param : params) {
        if (param->type == ParamType::filePath)
            continue;
        for (const double value : {param->low, param->high}) {
            host::store(filter, *param, std::vector<double>(param->elements, value));
            filter.run();
        }
        host::store(filter, *param, host::exampleValue(*param, first.width(), first.height()));
    }
}

class SmallStack : public testing::Test {
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "the sanitizers' code has larger frames";
#endif
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

void runEveryEffect()
{
    running = "starting the engine";
    test::useFilesInMemory();
    test::files.others.assign(3, {200, 100, 50, 128});
    InitializeEngine("./", nullptr);
    {
        const host::Image first = picture(4096, 64);
        const host::Image second = picture(4096, 64);
        for (const EffectInfo& effect : listEffects())
            if (!effect.needsGpu)
                runEffect(effect, first, second);
    }
    running = "ending the engine";
    UninitializeEngine();
}

TEST_F(SmallStack, BearsEveryEffectAtTheLargestWidth)
{
    EXPECT_EXIT(runAndExit(runEveryEffect), testing::ExitedWithCode(0), "");
}

void runLargePictures()
{
    test::useFilesInMemory();
    test::files.others.assign(3, {200, 100, 50, 128});
    InitializeEngine("./", nullptr);
    {
        const host::Image first = picture(4096, 4096);
        const host::Image second = picture(4096, 4096);
        for (const char* const name : {"blur", "glow", "distort", "equalize", "ribbon", "light-room",
                 "am-fuzzy-img", "am-shake", "wave", "twirl", "zoom"}) {
            running = name;
            host::Filter filter(findEffect(name)->guid, 4096, 4096);
            filter.setInput(first);
            filter.setInput(second, 1);
            filter.set(kEffectTotalTime, 2.0f);
            filter.set(kEffectCurrentTime, 0.7f);
            for (const std::size_t threads : {1, 4}) {
                const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
                filter.run();
            }
        }
    }
    UninitializeEngine();
}

TEST_F(SmallStack, BearsTheLargestPictures)
{
    EXPECT_EXIT(runAndExit(runLargePictures), testing::ExitedWithCode(0), "");
}

} // namespace
