// The render thread's side: starts the graphics system and carries out requests, one after the other.
#include "EffectTovOgre/RenderThreadState.h"
#include "EffectTovOgre/TovOgreBase.h"
#include "graphics/TovEffectBase.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <vector>

namespace KEXSDK {

namespace renderThread {

namespace {

std::unique_ptr<GraphicsSystem> makeGraphicsSystem()
{
    GraphicsSystemFactory factory;
    {
        const std::lock_guard guard(process().settings);
        factory = process().factory;
    }
    return factory ? factory() : makeOgreGraphicsSystem();
}

void publish(const GpuCapabilities& capabilities)
{
    const std::lock_guard guard(process().settings);
    process().capabilities = capabilities;
    process().maxTextureSize = capabilities.maxTextureSize;
}

/// Logs a message. A log that fails must not end the thread.
void logSafely(GraphicsSystem& system, std::string_view message) noexcept
{
    try {
        system.log(message);
    } catch (...) { // there is no other place to report to
    }
}

/// Carries out the requests, and owns the effects.
class RenderLoop {
public:
    explicit RenderLoop(GraphicsSystem& system) : system_(system) { }

    /// Serves requests until the one that shuts down. @return false when no requester asked for that
    bool run()
    {
        Process& all = process();
        bool asked = true;
        for (;;) {
            all.request.wait();
            const u32 code = all.slot.code;
            serve(code);
            if (code == kShutdown)
                break;
            if (all.slot.code == kShutdown) // the requester is released when the thread ends
                asked = false;
            else
                all.done.set();
        }
        return asked;
    }

private:
    struct Entry {
        std::string className;
        std::shared_ptr<TovEffectBase> effect;
    };

    void serve(u32 code) noexcept
    {
        // Whatever a request meets, its requester is waiting and must be released.
        try {
            dispatch(code);
        } catch (const std::exception& error) {
            logSafely(system_, error.what());
        } catch (...) {
            logSafely(system_, "Request ended by an exception.");
        }
    }

    void dispatch(u32 code)
    {
        Slot& slot = process().slot;
        switch (code) {
        case kCreateEffect:
            slot.createdEffect = createEffect(slot.className.data());
            break;
        case kPrepareEffect:
            if (find(slot.effect))
                slot.effect->getShaderParameters();
            break;
        case kLoadImage:
            slot.loadedImage = &system_.sharedImage();
            slot.loadedImage->freeMemory();
            if (slot.resourceOnly)
                system_.loadResource(slot.filePath);
            else
                system_.loadImage(slot.filePath);
            break;
        case kSaveImage:
            slot.saved =
                system_.saveImage(slot.filePath, slot.pixels, slot.width, slot.height, slot.pixelFormat);
            break;
        case kEvaluateEffect:
            evaluate(slot);
            break;
        case kReadBack:
            if (_ImageParam* const record = *slot.outputSlot; record && find(record->gpuOwner))
                record->gpuOwner->getPixels(record, nullptr, slot.channels);
            break;
        case kDeleteEffect:
            slot.code = kIdle;
            deleteEffect(slot.effect);
            slot.effect = nullptr;
            break;
        case kIdle:
            system_.log("Thread is idle!");
            break;
        case kShutdown:
            deleteAllEffects();
            break;
        }
    }

    static void endScene(TovEffectBase& effect)
    {
        if (auto* const scene = dynamic_cast<LiveEffect*>(&effect))
            scene->destroyScene();
    }

    /// The list's entry of an effect, or null. Effects are known by their address: one that outlived the
    /// thread that made it can be told from a living one without being touched.
    Entry* find(const TovEffectBase* effect)
    {
        const auto entry = std::ranges::find(effects_, effect, [](const Entry& e) { return e.effect.get(); });
        return effect && entry != effects_.end() ? &*entry : nullptr;
    }

    std::shared_ptr<TovEffectBase> createEffect(const char* className)
    {
        std::shared_ptr<TovEffectBase> effect(system_.createEffect(className));
        if (!effect)
            return nullptr;
        effects_.push_back({className, std::move(effect)});
        return effects_.back().effect;
    }

    void evaluate(const Slot& slot)
    {
        if (!find(slot.effect))
            return;
        slot.effect->render(slot.outputSlot, slot.outputBuffer, slot.channels);
        Process& all = process();
        all.windowClosed = slot.effect->isWindowClosed();
        if (all.windowClosed) {
            all.slot.code = kShutdown;
            all.request.set();
        }
    }

    void deleteEffect(const TovEffectBase* effect)
    {
        Entry* const entry = find(effect);
        if (!entry)
            return;
        endScene(*entry->effect); // whoever shares the object may let it go on another thread
        effects_.erase(effects_.begin() + (entry - effects_.data()));
    }

    void deleteAllEffects()
    {
        if (effects_.empty())
            return;
        logSafely(system_, "Delete all effect!");
        for (Entry& entry : effects_) { // a vector's own order of destruction is not promised
            endScene(*entry.effect);
            entry.effect.reset();
        }
        effects_.clear();
    }

    GraphicsSystem& system_;
    std::vector<Entry> effects_;
};

/// Makes and starts the graphics system. @return null after a failure, which is logged where there is a log
std::unique_ptr<GraphicsSystem> startGraphicsSystem(const ThreadParameters& parameters) noexcept
{
    std::unique_ptr<GraphicsSystem> system;
    try {
        system = makeGraphicsSystem();
        if (system
            && system->start(parameters.resourceDirectory, parameters.pluginsDirectory,
                parameters.logDirectory, parameters.kind)) {
            publish(system->capabilities());
            return system;
        }
    } catch (...) { // no graphics system, whatever the reason
    }
    if (system)
        logSafely(*system, "Initialze Ogre failed!");
    return nullptr;
}

} // namespace

void run(const ThreadParameters& parameters) noexcept
{
    Process& all = process();
    all.threadId = std::this_thread::get_id();
    if (auto system = startGraphicsSystem(parameters)) {
        all.system = system.get();
        all.running = true;
        all.gpuAvailable = true;
        all.done.set();

        if (!RenderLoop(*system).run())
            all.gpuAvailable = false;
        all.running = false;
        all.system = nullptr;
        system.reset();
    } else {
        all.gpuAvailable = false;
    }
    all.threadId = std::thread::id();
    all.done.set();
}

/// Never destroyed: a host may leave without shutting down, and the thread then still waits on the events
/// while static objects go.
Process& process()
{
    static Process* const only = new Process;
    return *only;
}

} // namespace renderThread

} // namespace KEXSDK
