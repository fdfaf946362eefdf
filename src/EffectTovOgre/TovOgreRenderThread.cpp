// The requesters' side of the render thread: a request goes into the slot, and the caller waits until it is
// done.
#include "EffectTovOgre/TovOgreRenderThread.h"

#include "EffectTovOgre/RenderThreadState.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

namespace KEXSDK {

namespace {

using namespace renderThread;

constexpr std::string_view kEffectClass = "TovOgrePaticalUniverseEffect";

/// The request lock, or nothing when the calling thread cannot be served.
std::optional<platform::MyCSingleLock> enterRequest()
{
    Process& all = process();
    if (TovOgreRenderThread::isCurrent())
        return std::nullopt;
    platform::MyCSingleLock lock(all.requests);
    if (!lock || !all.running)
        return std::nullopt;
    return lock;
}

void perform(RequestCode code)
{
    Process& all = process();
    all.slot.code = code;
    all.request.set();
    all.done.wait();
}

std::string textOrEmpty(const char* text) { return text ? text : ""; }

} // namespace

TovOgreRenderThread::TovOgreRenderThread(
    const char* resourceDirectory, const char* pluginsDirectory, const char* logDirectory)
    : resourceDirectory_(textOrEmpty(resourceDirectory)),
      pluginsDirectory_(textOrEmpty(pluginsDirectory)),
      logDirectory_(textOrEmpty(logDirectory))
{
    if (platform::MyCSingleLock lock(process().requests); lock)
        start();
}

TovOgreRenderThread::TovOgreRenderThread(
    WhenNeeded, const char* resourceDirectory, const char* pluginsDirectory, const char* logDirectory)
    : resourceDirectory_(textOrEmpty(resourceDirectory)),
      pluginsDirectory_(textOrEmpty(pluginsDirectory)),
      logDirectory_(textOrEmpty(logDirectory))
{
    process().waiting = this;
}

TovOgreRenderThread::~TovOgreRenderThread()
{
    Process& all = process();
    TovOgreRenderThread* self = this;
    if (all.waiting.compare_exchange_strong(self, nullptr))
        return;
    if (gpuAvailable() || all.instance == this)
        shutdown();
    self = this;
    all.instance.compare_exchange_strong(self, nullptr);
}

/// Starts the thread unless one is running. The request lock is held.
void TovOgreRenderThread::start()
{
    Process& all = process();
    if (all.thread.joinable() && !all.running)
        all.thread.join(); // it ended by itself
    if (!all.thread.joinable()) {
        all.slot = Slot{};
        all.windowClosed = false;
        all.request.reset();
        all.done.reset();
        try {
            all.thread = std::thread(renderThread::run,
                ThreadParameters{resourceDirectory_, pluginsDirectory_, logDirectory_, kind_});
            all.done.wait();
        } catch (const std::system_error&) { // the process has no thread left to give
            all.gpuAvailable = false;
        }
    }
    all.instance = this;
    if (!all.gpuAvailable) {
        if (all.thread.joinable())
            all.thread.join();
        all.instance = nullptr;
    }
}

TovOgreRenderThread& TovOgreRenderThread::getInstance()
{
    Process& all = process();
    if (TovOgreRenderThread* const instance = all.instance)
        return *instance;

    // Kept for the whole process and started again when needed: nobody could tell when its last user is gone.
    static TovOgreRenderThread* const onDemand = new TovOgreRenderThread(Deferred{});
    if (isCurrent())
        return *onDemand; // starting up: whoever started this thread will be the instance
    const platform::MyCSingleLock lock(all.requests);
    if (TovOgreRenderThread* const instance = all.instance)
        return *instance;
    if (!lock)
        return *onDemand;
    TovOgreRenderThread* const waiting = all.waiting.exchange(nullptr);
    TovOgreRenderThread* const next = waiting ? waiting : onDemand;
    next->start();
    all.instance = next;
    return *next;
}

void TovOgreRenderThread::startWaiting()
{
    if (process().waiting)
        getInstance();
}

TovEffectBase* TovOgreRenderThread::createEffect() { return createSharedEffect().get(); }

std::shared_ptr<TovEffectBase> TovOgreRenderThread::createSharedEffect()
{
    const auto lock = enterRequest();
    if (!lock)
        return nullptr;
    Slot& slot = process().slot;
    slot.className.fill('\0');
    std::ranges::copy(kEffectClass, slot.className.begin());
    slot.createdEffect = nullptr;
    perform(kCreateEffect);
    return std::exchange(slot.createdEffect, nullptr);
}

u32 TovOgreRenderThread::prepareEffect(TovEffectBase* effect)
{
    const auto lock = enterRequest();
    if (!lock || !effect)
        return 0;
    Slot& slot = process().slot;
    slot.effect = effect;
    perform(kPrepareEffect);
    slot.effect = nullptr;
    return 1;
}

u32 TovOgreRenderThread::evaluateEffect(TovEffectBase* effect, _ImageParam** slot, u8* buffer)
{
    const auto lock = enterRequest();
    Process& all = process();
    if (!lock || !effect || !slot || std::exchange(all.windowClosed, false))
        return 0;
    all.slot.effect = effect;
    all.slot.outputSlot = slot;
    all.slot.outputBuffer = buffer;
    all.slot.channels = kChannels;
    perform(kEvaluateEffect);
    all.slot.effect = nullptr;
    all.slot.outputSlot = nullptr;
    all.slot.outputBuffer = nullptr;
    return 1;
}

u32 TovOgreRenderThread::readBack(_ImageParam* record)
{
    const auto lock = enterRequest();
    Process& all = process();
    if (!lock || !record || std::exchange(all.windowClosed, false))
        return 0;
    all.slot.outputSlot = &record;
    all.slot.channels = kChannels;
    perform(kReadBack);
    all.slot.outputSlot = nullptr;
    return 1;
}

u32 TovOgreRenderThread::deleteEffect(TovEffectBase* effect)
{
    const auto lock = enterRequest();
    if (!lock)
        return 0;
    Process& all = process();
    if (!effect) {
        all.system->log("Error: This effect is NULL!");
        return 0;
    }
    all.slot.effect = effect;
    perform(kDeleteEffect);
    return 1;
}

LoadedImage TovOgreRenderThread::loadImage(const char* path) { return load(path, false); }

LoadedImage TovOgreRenderThread::loadResource(const char* name) { return load(name, true); }

LoadedImage TovOgreRenderThread::load(const char* path, bool resourceOnly)
{
    auto lock = enterRequest();
    if (!lock || !path)
        return {};
    Slot& slot = process().slot;
    slot.filePath = path;
    slot.resourceOnly = resourceOnly;
    slot.loadedImage = nullptr;
    perform(kLoadImage);
    slot.filePath = nullptr;
    SharedImage* const image = std::exchange(slot.loadedImage, nullptr);
    if (!image)
        return {};
    return {std::move(*lock), image};
}

bool TovOgreRenderThread::saveImage(const char* path, const u8* pixels, u32 width, u32 height)
{
    if (!path || !pixels)
        return false;
    const auto lock = enterRequest();
    if (!lock)
        return false;
    Slot& slot = process().slot;
    slot.filePath = path;
    slot.pixels = pixels;
    slot.width = width;
    slot.height = height;
    slot.pixelFormat = RecordFormat::A8R8G8B8;
    slot.saved = false;
    perform(kSaveImage);
    slot.filePath = nullptr;
    slot.pixels = nullptr;
    return slot.saved;
}

void TovOgreRenderThread::log(std::string_view message)
{
    Process& all = process();
    if (isCurrent()) {
        if (all.system)
            all.system->log(message);
    } else if (const auto lock = enterRequest()) {
        all.system->log(message);
    }
}

bool TovOgreRenderThread::isCurrent() noexcept
{
    return process().threadId.load() == std::this_thread::get_id();
}

u32 TovOgreRenderThread::shutdown()
{
    Process& all = process();
    if (isCurrent())
        return 0;
    const platform::MyCSingleLock lock(all.requests);
    if (!lock || !all.instance)
        return 0;
    if (all.running)
        perform(kShutdown);
    if (all.thread.joinable())
        all.thread.join();
    all.instance = nullptr;
    all.slot = Slot{};
    all.windowClosed = false;
    all.gpuAvailable = true;
    return 1;
}

void TovOgreRenderThread::setGraphicsSystemFactory(GraphicsSystemFactory factory)
{
    const std::lock_guard guard(process().settings);
    process().factory = std::move(factory);
}

bool gpuAvailable() noexcept { return process().gpuAvailable; }

u32 maxTextureSize() noexcept { return process().maxTextureSize; }

GpuCapabilities gpuCapabilities()
{
    const std::lock_guard guard(process().settings);
    return process().capabilities;
}

} // namespace KEXSDK
