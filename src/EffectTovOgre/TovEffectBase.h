// What the rest of the engine sees of a GPU effect.
#pragma once

#include "core/Types.h"
#include "model/ImageParam.h"

/// An off-screen scene that draws its inputs into a render target. The render thread makes, draws and
/// destroys effects; only set-up calls come from other threads.
class TovEffectBase {
public:
    TovEffectBase() = default;
    TovEffectBase(const TovEffectBase&) = delete;
    TovEffectBase& operator=(const TovEffectBase&) = delete;
    /// Called on the render thread, while the graphics system is still up.
    virtual ~TovEffectBase() = default;

    /// Draws one frame and copies it into the record's pixel memory. Render thread only.
    /// @param output  variable with the output record; when it holds null, put the effect's own record there
    /// @param buffer  memory of the output's size to read the frame into, or null for the record's own
    virtual void render(KEXSDK::_ImageParam** output, u8* buffer, u32 channels) = 0;

    /// Copies the latest frame into the record's pixel memory, or into `buffer` when given. Render thread
    /// only.
    virtual void getPixels(KEXSDK::_ImageParam* record, u8* buffer, u32 channels) = 0;

    /// True once the window that the effect draws into has been closed; the render thread then ends.
    virtual bool isWindowClosed() = 0;

    /// Number that no other living effect has.
    virtual u32 getId() = 0;
};
