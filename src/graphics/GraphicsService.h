// The interface through which images and effects use a graphics system, whichever it is.
#pragma once

#include "graphics/GraphicsSystem.h"
#include "platform/CriticalSection.h"

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace KEXSDK {

/// The shared image after a load request. While a LoadedImage lives nobody else's request can overwrite the
/// image: copy what you need and let it go, on the thread that loaded it. That thread's own requests are
/// refused meanwhile.
class LoadedImage {
public:
    LoadedImage() = default;
    LoadedImage(platform::MyCSingleLock&& lock, SharedImage* image)
        : lock_(std::move(lock)),
          image_(image) { }
    LoadedImage(LoadedImage&& other) noexcept
        : lock_(std::move(other.lock_)),
          image_(std::exchange(other.image_, nullptr))
    {
    }
    LoadedImage& operator=(LoadedImage&&) = delete;

    /// False when nothing could be loaded at all. True says nothing about the file: ask hasData().
    explicit operator bool() const { return image_ != nullptr; }
    SharedImage* operator->() const { return image_; }
    SharedImage& operator*() const { return *image_; }

private:
    std::optional<platform::MyCSingleLock> lock_;
    SharedImage* image_ = nullptr;
};

/// Any thread may ask; a call returns when the work is done, or at once when the system cannot do it.
class GraphicsService {
public:
    /// Starts the system unless it is up, or has failed to start.
    virtual void start() = 0;
    /// False when nothing can be drawn: after a failed start, and when the system has ended by itself. Starts
    /// a system that waits to be needed.
    virtual bool available() const = 0;
    /// What the running, or last started, system can do. Starts a system that waits to be needed.
    virtual GpuCapabilities capabilities() const = 0;
    /// Writes one line into the system's own log; does nothing while the system is not up.
    virtual void log(std::string_view message) = 0;

    /// Decodes a picture file: a file of that name in the resource locations, else the one at that path
    /// (UTF-8). Starts the system.
    virtual LoadedImage loadImage(const char* path) = 0;
    /// Decodes a file of the resource locations; others are not looked for. Starts the system.
    virtual LoadedImage loadResource(const char* name) = 0;
    /// Writes a picture file, its kind by the path's extension. Rows are top row first, bytes blue, green,
    /// red, alpha. Starts the system. @return whether the file was written
    virtual bool saveImage(const char* path, const u8* pixels, u32 width, u32 height) = 0;
    /// Copies the picture of the effect that owns the record into the record's memory; a record without owner
    /// stays as it is. Starts the system.
    virtual void readBack(_ImageParam& record) = 0;

    /// A new GPU effect, or null. Starts the system. The object may outlive its scene, which ends with
    /// endEffect or with the system.
    virtual std::shared_ptr<TovEffectBase> createEffect() = 0;
    /// Draws a frame into the record's memory, and gives the record its texture.
    /// @return false when the effect was not asked to draw; effect.drewFrame() tells whether it drew
    virtual bool draw(TovEffectBase& effect, _ImageParam& target) = 0;
    /// Takes the effect's scene out of the system; does nothing when the system has ended.
    virtual void endEffect(TovEffectBase& effect) = 0;

protected:
    ~GraphicsService() = default;
};

/// The program's graphics system; one that loads, saves and draws nothing while there is none.
GraphicsService& graphics() noexcept;

/// Names the system that graphics() answers from now on, null for none. It stays for the life of the process;
/// the render thread's names itself while the library loads.
void setGraphicsService(GraphicsService* service) noexcept;

} // namespace KEXSDK
