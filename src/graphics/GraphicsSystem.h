// The interface of the graphics systems that the render thread can run.
#pragma once

#include "core/Types.h"
#include "graphics/ImageParam.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace KEXSDK {

class TovEffectBase;

/// The one picture that every load request decodes into: 32-bit pixels in the bytes blue, green, red, alpha
/// (straight alpha, opaque where the file has none), rows packed, top row first.
class SharedImage {
public:
    virtual ~SharedImage() = default;
    virtual bool hasData() const = 0;
    virtual u32 width() const = 0;
    virtual u32 height() const = 0;
    virtual RecordFormat format() const = 0;
    virtual u32 bitsPerPixel() const = 0;
    /// Valid until the next change of the picture.
    virtual std::span<const u8> bytes() const = 0;
    /// Scales with a bilinear filter. False, with the picture unchanged, when there is no picture, a side
    /// is 0 or above 16384, or memory is short.
    virtual bool scale(u32 width, u32 height) = 0;
    virtual void freeMemory() = 0;
};

/// Facts about the GPU, read once when the graphics system starts.
struct GpuCapabilities {
    u32 maxTextureSize = 0;
    bool pbuffer = false;
    bool intelGpu = false;
    bool textures3D = false;
    std::string renderer; ///< the device's name, as its driver gives it
    struct {
        i32 major = 0, minor = 0, release = 0, build = 0;
    } driver;
};

/// Made, used and destroyed by the render thread alone; `log` may also be called by a requesting thread while
/// the render thread waits. Destruction ends the system; every effect is destroyed before.
class GraphicsSystem {
public:
    virtual ~GraphicsSystem() = default;

    /// Starts the system. Directories end with a separator; an empty one is the current directory, and for
    /// the log means that there is no file. `kind` is the render system asked for, 0 for OpenGL.
    /// @return whether the system is usable
    virtual bool start(const std::string& resourceDirectory, const std::string& pluginsDirectory,
        const std::string& logDirectory, u32 kind) = 0;

    virtual GpuCapabilities capabilities() const = 0;

    /// A new effect that the caller owns, or null when no factory knows the class.
    virtual TovEffectBase* createEffect(const char* className) = 0;

    /// Decodes the file into the shared image; a file that cannot be read leaves it empty and is logged.
    virtual void loadImage(const std::string& path) = 0;
    /// Decodes a file of the resource locations, where the effects' pictures lie; no other is read. The
    /// default serves systems without such locations: it calls loadImage.
    virtual void loadResource(const std::string& name) { loadImage(name); }
    virtual SharedImage& sharedImage() = 0;

    /// Writes rows, top row first, as the kind of picture that the path's extension names.
    /// @return whether the file is complete; a failure is logged
    virtual bool saveImage(
        const std::string& path, const u8* pixels, u32 width, u32 height, RecordFormat format) = 0;

    /// Writes one line into the graphics system's own log, at its normal level; does nothing before `start`.
    virtual void log(std::string_view message) = 0;
};

using GraphicsSystemFactory = std::function<std::unique_ptr<GraphicsSystem>()>;

} // namespace KEXSDK
