// The thread that does all GPU work and all picture file work, one request at a time.
#pragma once

#include "core/Types.h"
#include "graphics/GraphicsService.h"

#include <memory>
#include <string>
#include <string_view>

namespace KEXSDK {

/// Requests block until the render thread has done them. Any thread may make them; those of two threads come
/// one after the other. Without a running thread (failed start, ended by itself, shut down), on the render
/// thread itself, and while the calling thread holds a LoadedImage they return at once without effect.
class TovOgreRenderThread {
public:
    /// Starts the thread unless one is running, waits until the GPU is up or known to be unavailable, and
    /// becomes the instance if it is up. Null directories count as empty.
    TovOgreRenderThread(
        const char* resourceDirectory, const char* pluginsDirectory, const char* logDirectory);
    /// Starts the thread, with these directories, when getInstance() is asked first and there is no instance.
    struct WhenNeeded { };
    TovOgreRenderThread(
        WhenNeeded, const char* resourceDirectory, const char* pluginsDirectory, const char* logDirectory);
    TovOgreRenderThread(const TovOgreRenderThread&) = delete;
    TovOgreRenderThread& operator=(const TovOgreRenderThread&) = delete;
    /// Shuts the thread down, whichever object started it.
    virtual ~TovOgreRenderThread();

    /// The instance. If there is none, the one that waits to be needed is started, or else one with empty
    /// directories; it stays the instance even when its start fails, so that later callers do not wait for
    /// another failure.
    static TovOgreRenderThread& getInstance();
    /// Makes the object that waits to be needed, if there is one, the instance.
    static void startWaiting();

    /// A new GPU effect, owned by the render thread, or null. Nodes use GpuEffect instead, whose object
    /// outlives the thread.
    TovEffectBase* createEffect();

    /// A new GPU effect that the caller owns as well: its scene ends with deleteEffect or the thread.
    std::shared_ptr<TovEffectBase> createSharedEffect();

    /// Makes the programs of an effect, so that its uniforms are known.
    /// @return 1 when the request was made, else 0
    static u32 prepareEffect(TovEffectBase* effect);

    /// Draws a frame of an effect made by createEffect. `slot` is the variable with the output record (it may
    /// hold null: it then receives the effect's own), `buffer` memory to read the frame into, or null.
    /// @return 1 when the request was made. After a closed window one call is passed over.
    static u32 evaluateEffect(TovEffectBase* effect, _ImageParam** slot, u8* buffer);

    /// Copies the render target of the effect that owns the record into the record's pixels; a record without
    /// owner stays as it is. @return 1 when the request was made, else 0
    u32 readBack(_ImageParam* record);

    /// Destroys an effect made by createEffect. @return 1 when the request was made, else 0
    static u32 deleteEffect(TovEffectBase* effect);

    /// Decodes a picture file: a file of that name in the resource locations, else the one at that path
    /// (UTF-8).
    LoadedImage loadImage(const char* path);
    /// Decodes a picture file of the resource locations; no other is read.
    LoadedImage loadResource(const char* name);

    /// Writes a picture file, its kind by the path's extension. Rows are top row first, bytes blue, green,
    /// red, alpha. @return whether the file was written
    bool saveImage(const char* path, const u8* pixels, u32 width, u32 height);

    /// One line of the graphics system's log; nothing while there is none.
    static void log(std::string_view message);

    /// True on the render thread itself.
    static bool isCurrent() noexcept;

    /// Deletes every effect, ends the graphics system and the thread. The next user starts anew.
    /// @return 0 when there was no instance, else 1
    u32 shutdown();

    /// Sets what makes the graphics system at the next start of the thread; an empty factory stands for OGRE.
    static void setGraphicsSystemFactory(GraphicsSystemFactory factory);

private:
    struct Deferred { };
    explicit TovOgreRenderThread(Deferred) { }

    void start();
    LoadedImage load(const char* path, bool resourceOnly);

    std::string resourceDirectory_;
    std::string pluginsDirectory_;
    std::string logDirectory_;
    u32 kind_ = 0; ///< the render system asked for; 0 is OpenGL, the only one
};

/// False after a failed start and after the thread ended by itself; true before the first start and after a
/// shutdown, when the next request starts the thread. Any thread.
bool gpuAvailable() noexcept;

/// Largest side of a texture, 0 until a thread has started. Any thread.
u32 maxTextureSize() noexcept;

/// What the running (or last started) GPU reported. Any thread.
GpuCapabilities gpuCapabilities();

} // namespace KEXSDK
