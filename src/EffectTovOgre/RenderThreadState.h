// What requesting threads and the render thread share: one slot for one request, and an event each way.
#pragma once

#include "core/Types.h"
#include "graphics/GraphicsSystem.h"
#include "platform/CriticalSection.h"
#include "platform/Event.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace KEXSDK {

class TovOgreRenderThread;

namespace renderThread {

enum RequestCode : u32 {
    kCreateEffect = 0,
    kPrepareEffect = 1,
    kLoadImage = 3,
    kSaveImage = 4,
    kEvaluateEffect = 5,
    kReadBack = 6,
    kDeleteEffect = 7,
    kIdle = 8,
    kShutdown = 9
};

constexpr u32 kChannels = 4; ///< of every picture that an effect reads or draws

/// Arguments and results of the request under way. A requester writes it before it sets the request event and
/// reads it after the done event; in between it is the render thread's.
struct Slot {
    u32 code = kIdle;
    std::array<char, 256> className{};
    TovEffectBase* effect = nullptr;
    _ImageParam** outputSlot = nullptr;
    u8* outputBuffer = nullptr;
    u32 channels = kChannels;
    const char* filePath = nullptr;
    bool resourceOnly = false; ///< the picture is to be found in the resource locations
    const u8* pixels = nullptr;
    u32 width = 0;
    u32 height = 0;
    RecordFormat pixelFormat = RecordFormat::A8B8G8R8;

    std::shared_ptr<TovEffectBase> createdEffect;
    SharedImage* loadedImage = nullptr;
    bool saved = false;
};

/// Everything that exists once per process.
struct Process {
    /// Held for the whole of one request, and while the thread starts or ends.
    platform::CriticalSection requests;
    platform::Event request;
    platform::Event done;
    Slot slot;
    bool windowClosed = false;        ///< the effect drawn last has lost its window; guarded by `requests`
    std::thread thread;               ///< guarded by `requests`
    GraphicsSystem* system = nullptr; ///< the running thread's own; guarded by `requests`
    std::atomic<std::thread::id> threadId;
    std::atomic<bool> running = false; ///< the thread has started and will serve requests
    std::atomic<bool> gpuAvailable = true;
    std::atomic<u32> maxTextureSize = 0;
    std::atomic<TovOgreRenderThread*> instance = nullptr;
    std::atomic<TovOgreRenderThread*> waiting = nullptr; ///< starts when the instance is asked for

    std::mutex settings; ///< guards what follows
    GpuCapabilities capabilities;
    GraphicsSystemFactory factory;
};

Process& process();

/// The system that draws with OGRE and OpenGL.
std::unique_ptr<GraphicsSystem> makeOgreGraphicsSystem();

struct ThreadParameters {
    std::string resourceDirectory;
    std::string pluginsDirectory;
    std::string logDirectory;
    u32 kind;
};

/// The thread's function: starts the graphics system, reports whether that worked by setting the done event,
/// and serves requests until one of them shuts down.
void run(const ThreadParameters& parameters) noexcept;

} // namespace renderThread

} // namespace KEXSDK
