// A picture with alpha that an effect lays over every frame: chosen by the frame's shape, loaded once.
#pragma once

#include "model/CEffectImage.h"
#include "pixels/rows.h"
#include "pixels/wordBlends.h"

namespace KEXSDK {

/// Files that hold one drawing for the two shapes of a frame.
struct OverlayFiles {
    const char* wide;   ///< for frames of exactly 16:9
    const char* narrow; ///< for every other frame
};

class OverlayPicture {
public:
    explicit OverlayPicture(OverlayFiles files) : files_(files) { }

    /// The picture at this size, or null when its file cannot be loaded. Only the first call looks for it.
    const CEffectImage* at(pixels::Extent size);

private:
    OverlayFiles files_;
    std::unique_ptr<CEffectImage> picture_;
    bool sought_ = false;
};

/// dst = src with alpha 255: what a frame shows when its overlay is missing.
void copyOpaque(pixels::ConstView src, pixels::View dst);

/// dst = the overlay, by its own alpha, over base(src pixel), with alpha 255. Without an overlay it is
/// copyOpaque(), and base is not asked.
/// @param first  the row of the overlay that lies over the first row of src
template <class Base>
void layOver(pixels::ConstView src, pixels::View dst, const CEffectImage* overlay, int first, Base base)
{
    if (!overlay)
        return copyOpaque(src, dst);
    const pixels::ConstView over = overlay->view().rows(first, first + dst.height());
    pixels::rows::map2(src, over, dst, [base](pixels::Bgra p, pixels::Bgra drawn) {
        pixels::Bgra blended = ceilingBlend(base(p), drawn, drawn.a);
        blended.a = 255;
        return blended;
    });
}

} // namespace KEXSDK
