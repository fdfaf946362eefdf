// Images and nodes in a program without a graphics system, and the render thread as the program's system.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "effects/gpu/GpuEffect.h"
#include "graphics/GraphicsService.h"
#include "model/CSimpleEffect.h"
#include "model/EffectRegistry.h"
#include "support/EngineFixture.h"

namespace {

class WithoutService : public testing::Test {
protected:
    WithoutService() { KEXSDK::setGraphicsService(nullptr); }
    ~WithoutService() override { KEXSDK::setGraphicsService(&service_); }

    KEXSDK::GraphicsService& service_ = KEXSDK::graphics();
};

TEST_F(WithoutService, NothingIsLoadedSavedOrDrawnAndNoThreadStarts)
{
    test::useNoGraphics(); // if a thread starts all the same, gpuAvailable() tells
    KEXSDK::CEffectImage image(2, 2, 0, 32, nullptr);
    image.pixels()[0] = 7;
    EXPECT_EQ(KEXSDK::CEffectImage::loadFromFile("any.png", 2, 2), nullptr);
    EXPECT_FALSE(image.saveToFile("any.png"));
    EXPECT_EQ(image.pixels()[0], 7);
    EXPECT_FALSE(KEXSDK::GpuEffect::create());
    EXPECT_FALSE(KEXSDK::GpuEffect().draw(image));
    EXPECT_TRUE(KEXSDK::gpuAvailable()) << "a start fails here";
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
}

TEST_F(WithoutService, EffectsWithAGpuPathComputeOnTheCpu)
{
    const std::unique_ptr<KEXSDK::CSimpleEffect> node(
        KEXSDK::EffectRegistry::instance().create("CB87BAF6-5462-4877-BE55-C2A95D8FAF2A", 8, 8));
    node->init();
    KEXSDK::CEffectImage input(8, 8, 0, 32, nullptr);
    std::fill_n(input.pixels(), input.byteSize(), u8(100));
    node->setInputImage(&input, 0);
    node->setParamFloatValue("u_brightness", 50);
    ASSERT_TRUE(node->evaluate(nullptr));
    EXPECT_GT(node->getOutputImage()->pixels()[0], 100);
}

TEST(ProgramsGraphics, TheRenderThreadStandsForTheProgramsGraphics)
{
    test::useNoGraphics();
    KEXSDK::graphics().start();
    EXPECT_FALSE(KEXSDK::graphics().available());
    EXPECT_FALSE(KEXSDK::gpuAvailable());
    KEXSDK::TovOgreRenderThread::getInstance().shutdown();
    EXPECT_TRUE(KEXSDK::graphics().available());
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory({});
}

} // namespace
