// Sizes and bytes of images as views.
#include "hosting/imageView.h"

namespace host {

pixels::View viewOf(const Image& image)
{
    return {image.bytes().data(), {int(image.width()), int(image.height())}};
}

pixels::ConstView viewOf(CEffectImage* image) { return viewToChange(image); }

pixels::View viewToChange(CEffectImage* image)
{
    unsigned width = 0;
    unsigned height = 0;
    GetImageWidth(image, &width);
    GetImageHeight(image, &height);
    return {bytesOf(image).data(), {int(width), int(height)}};
}

} // namespace host
