// A running engine without a GPU, so that tests of CPU work start in no time and on any machine.
#pragma once

#include "EffectTovOgre/TovOgreRenderThread.h"
#include "hosting/Host.h"

#include <gtest/gtest.h>

namespace test {

/// A graphics system that never starts.
class NoGraphics final : public KEXSDK::GraphicsSystem {
public:
    bool start(const std::string&, const std::string&, const std::string&, u32) override { return false; }
    KEXSDK::GpuCapabilities capabilities() const override { return {}; }
    KEXSDK::TovEffectBase* createEffect(const char*) override { return nullptr; }
    void loadImage(const std::string&) override { }
    KEXSDK::SharedImage& sharedImage() override { std::abort(); }
    bool saveImage(const std::string&, const u8*, u32, u32, KEXSDK::RecordFormat) override { return false; }
    void log(std::string_view) override { }
};

inline void useNoGraphics()
{
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory([] { return std::make_unique<NoGraphics>(); });
}

class EngineWithoutGpu : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        useNoGraphics();
        ASSERT_EQ(InitializeEngine("./", nullptr), 0u);
    }
    static void TearDownTestSuite()
    {
        UninitializeEngine();
        KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
    }
};

} // namespace test
