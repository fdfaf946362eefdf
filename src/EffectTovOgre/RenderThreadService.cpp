// The render thread as the program's graphics system.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "graphics/GraphicsService.h"

namespace KEXSDK {

namespace {

class RenderThreadService final : public GraphicsService {
public:
    void start() override { TovOgreRenderThread::getInstance(); }
    bool available() const override
    {
        TovOgreRenderThread::startWaiting();
        return gpuAvailable();
    }
    GpuCapabilities capabilities() const override
    {
        TovOgreRenderThread::startWaiting();
        return gpuCapabilities();
    }
    void log(std::string_view message) override { TovOgreRenderThread::log(message); }
    LoadedImage loadImage(const char* path) override
    {
        return TovOgreRenderThread::getInstance().loadImage(path);
    }
    LoadedImage loadResource(const char* name) override
    {
        return TovOgreRenderThread::getInstance().loadResource(name);
    }
    bool saveImage(const char* path, const u8* pixels, u32 width, u32 height) override
    {
        return TovOgreRenderThread::getInstance().saveImage(path, pixels, width, height);
    }
    void readBack(_ImageParam& record) override { TovOgreRenderThread::getInstance().readBack(&record); }
    std::shared_ptr<TovEffectBase> createEffect() override
    {
        return TovOgreRenderThread::getInstance().createSharedEffect();
    }
    bool draw(TovEffectBase& effect, _ImageParam& target) override
    {
        _ImageParam* record = &target;
        return TovOgreRenderThread::evaluateEffect(&effect, &record, nullptr) != 0;
    }
    // Starts no thread: with the last one every scene has ended.
    void endEffect(TovEffectBase& effect) override { TovOgreRenderThread::deleteEffect(&effect); }
};

constinit RenderThreadService service;
const bool named = (setGraphicsService(&service), true);

} // namespace

} // namespace KEXSDK
