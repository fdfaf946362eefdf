// The engine's one image type: host pictures, node outputs and GPU results.
#pragma once

#include "graphics/ImageParam.h"
#include "pixels/View.h"

#include <memory>

namespace KEXSDK {

/// A handle around a pixel record. Nothing is locked; one thread uses an image at a time.
class CEffectImage {
public:
    /// @param width, height   pixels, 1..pixels::kLargestSide (checked by the exported functions)
    /// @param flipOnUnlock    1 for pictures from files: UnlockImageData then reverses the rows
    /// @param externalPixels  caller-owned buffer of width x height x 4 bytes that outlives the image, or
    ///                        null for a zeroed buffer of the image's own
    /// Throws std::bad_alloc.
    CEffectImage(u32 width, u32 height, u32 flipOnUnlock, u32 bitsPerPixel, void* externalPixels);
    CEffectImage(const CEffectImage&) = delete;
    CEffectImage& operator=(const CEffectImage&) = delete;
    virtual ~CEffectImage();

    /// Decodes a picture file through the graphics system and scales it to width x height (bilinear).
    /// @return null when the file cannot be read or decoded, or pictures cannot be loaded at all
    static std::unique_ptr<CEffectImage> loadFromFile(const char* path, u32 width, u32 height);

    /// Encodes the picture into a file of the kind that the path's extension names.
    /// @return whether the file was written; the failure itself is in the graphics system's log
    bool saveToFile(const char* path);

    /// Swaps the rows top to bottom.
    void reverseRows();

    u32 width() const { return record_->width; }
    u32 height() const { return record_->height; }
    u8* pixels() const { return record_->pixels; }
    u32 byteSize() const { return record_->byteSize; }
    bool flipsOnUnlock() const { return flipOnUnlock_ != 0; }
    pixels::Extent extent() const { return {int(width()), int(height())}; }
    pixels::View view() const { return {record_->pixels, extent()}; }

    /// The pixels, to be changed in place. Lets go of a texture that the GPU drew the picture into: it would
    /// show the picture before the change.
    pixels::View viewToChange();

    _ImageParam* record() const { return record_.get(); }

private:
    u32 bitsPerPixel_;
    u32 flipOnUnlock_;
    std::unique_ptr<_ImageParam> record_;
};

} // namespace KEXSDK
