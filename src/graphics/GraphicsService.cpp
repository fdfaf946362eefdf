// Keeps the program's graphics system, and a stand-in that loads and draws nothing while there is none.
#include "graphics/GraphicsService.h"

#include <atomic>

namespace KEXSDK {

namespace {

class NoGraphics final : public GraphicsService {
public:
    void start() override { }
    bool available() const override { return false; }
    GpuCapabilities capabilities() const override { return {}; }
    void log(std::string_view) override { }
    LoadedImage loadImage(const char*) override { return {}; }
    LoadedImage loadResource(const char*) override { return {}; }
    bool saveImage(const char*, const u8*, u32, u32) override { return false; }
    void readBack(_ImageParam&) override { }
    std::shared_ptr<TovEffectBase> createEffect() override { return nullptr; }
    bool draw(TovEffectBase&, _ImageParam&) override { return false; }
    void endEffect(TovEffectBase&) override { }
};

constinit NoGraphics none;
constinit std::atomic<GraphicsService*> present = &none;

} // namespace

GraphicsService& graphics() noexcept { return *present.load(std::memory_order_acquire); }

void setGraphicsService(GraphicsService* service) noexcept
{
    present.store(service ? service : &none, std::memory_order_release);
}

} // namespace KEXSDK
