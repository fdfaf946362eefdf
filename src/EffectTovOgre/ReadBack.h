// Copies frames from a render texture into memory.
#pragma once

#include "graphics/TovEffectBase.h"

namespace Ogre {
class Texture;
}

namespace KEXSDK {

/// Reads one effect's frames back. Render thread only, but for setMode.
class ReadBack {
public:
    ReadBack() = default;
    ReadBack(const ReadBack&) = delete;
    ReadBack& operator=(const ReadBack&) = delete;

    /// Chooses the way; direct at first, which is faster where memory is shared. Call prepare() before the
    /// next frame is read.
    void setMode(ReadBackMode mode) { mode_ = mode; }
    /// Makes the buffer that the mode needs for frames of this size.
    void prepare(u32 width, u32 height);
    /// Gives the buffer back to OpenGL; the mode is direct again.
    void release();

    /// Copies the texture's picture into memory of its size, 4 bytes a pixel. @return false, with the memory
    /// as it was, when OpenGL does not let the texture be read
    bool read(Ogre::Texture& texture, u8* pixels) const;

private:
    void readThroughBuffer(Ogre::Texture& texture, u8* pixels) const;

    ReadBackMode mode_ = ReadBackMode::direct;
    u32 packBuffer_ = 0; ///< OpenGL's number; 0 in direct mode
};

} // namespace KEXSDK
