// The pixel record behind every image; shared by images that live in memory and those drawn by the GPU.
#pragma once

#include "core/Types.h"

#include <memory>

namespace Ogre {
class Texture;
}

namespace KEXSDK {

class TovEffectBase;

/// Pixel-format numbers as the record stores them. The installed rendering library counts differently:
/// its own enumerators are looked up by name (EffectTovOgre/PixelFormats.h), never by these numbers.
enum class RecordFormat : u32 { A8R8G8B8 = 12, A8B8G8R8 = 13, R8G8B8A8 = 28 };

/// Pixels are 4 bytes (blue, green, red, alpha), rows packed, the picture's bottom row first in memory.
struct _ImageParam {
    TovEffectBase* gpuOwner = nullptr;           ///< effect whose render target holds the latest pixels
    std::shared_ptr<Ogre::Texture> sharedBuffer; ///< that render target; empty for plain images
    u8* pixels = nullptr;
    void* externalBuffer = nullptr; ///< caller-owned buffer given at construction, never freed here
    u32 format = u32(RecordFormat::A8B8G8R8);
    u32 width = 0;
    u32 height = 0;
    u32 byteSize = 0;
    u32 bytesPerPixel = 4;
    u8 ownsPixels = 0;
    u8 released = 0;
    u32 textureLeases = 0; ///< how many leases of the texture are alive

    _ImageParam() = default;
    _ImageParam(const _ImageParam&) = delete;
    _ImageParam& operator=(const _ImageParam&) = delete;
    virtual ~_ImageParam();

    /// Gives the record byteSize zeroed bytes of its own. Throws std::bad_alloc.
    void allocatePixels();

    /// Makes the caller's memory of byteSize bytes the pixels; null leaves none. Frees the record's own.
    void usePixels(u8* memory);

    /// Lets go of the texture: the picture is in memory alone from now on.
    void dropTexture();
};

} // namespace KEXSDK
