// Chooses, loads and blends overlays.
#include "effects/cpu/OverlayPicture.h"

#include "core/Log.h"

namespace KEXSDK {

const CEffectImage* OverlayPicture::at(pixels::Extent size)
{
    if (sought_)
        return picture_.get();
    sought_ = true;
    // Compared exactly: 1366 x 768, which is nearly as wide, takes the narrow drawing.
    const bool wide = double(size.width) / double(size.height) == 16.0 / 9.0;
    const char* const file = wide ? files_.wide : files_.narrow;
    picture_ = CEffectImage::loadFromFile(file, u32(size.width), u32(size.height));
    if (!picture_)
        logging::warning("KEXSDK::OverlayPicture::at", std::string("Overlay not loaded: [") + file + "]");
    return picture_.get();
}

void copyOpaque(pixels::ConstView src, pixels::View dst)
{
    pixels::rows::map(src, dst, [](pixels::Bgra p) {
        p.a = 255;
        return p;
    });
}

} // namespace KEXSDK
