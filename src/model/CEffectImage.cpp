// Image memory, row order, picture files.
#include "model/CEffectImage.h"

#include "graphics/GraphicsService.h"

#include <algorithm>
#include <cstring>

namespace KEXSDK {

namespace {

void swapRows(pixels::View picture)
{
    for (int y = 0; y < picture.height() / 2; ++y)
        std::ranges::swap_ranges(picture.row(y), picture.pictureRow(y));
}

} // namespace

CEffectImage::CEffectImage(u32 width, u32 height, u32 flipOnUnlock, u32 bitsPerPixel, void* externalPixels)
    : bitsPerPixel_(bitsPerPixel),
      flipOnUnlock_(flipOnUnlock),
      record_(std::make_unique<_ImageParam>())
{
    record_->width = width;
    record_->height = height;
    record_->externalBuffer = externalPixels;
    record_->byteSize = width * height * record_->bytesPerPixel;
    if (externalPixels)
        record_->pixels = static_cast<u8*>(externalPixels);
    else
        record_->allocatePixels();
}

CEffectImage::~CEffectImage() = default;

std::unique_ptr<CEffectImage> CEffectImage::loadFromFile(const char* path, u32 width, u32 height)
{
    auto picture = graphics().loadImage(path);
    if (!picture || !picture->hasData() || !picture->scale(width, height))
        return nullptr;
    auto image = std::make_unique<CEffectImage>(width, height, 1, picture->bitsPerPixel(), nullptr);
    const auto bytes = picture->bytes();
    std::memcpy(image->pixels(), bytes.data(), std::min<std::size_t>(bytes.size(), image->byteSize()));
    image->record_->format = u32(picture->format());
    picture->freeMemory();
    image->reverseRows();
    return image;
}

bool CEffectImage::saveToFile(const char* path)
{
    graphics().readBack(*record_);
    swapRows(view());
    const bool saved = graphics().saveImage(path, pixels(), width(), height());
    swapRows(view());
    return saved;
}

void CEffectImage::reverseRows() { swapRows(viewToChange()); }

pixels::View CEffectImage::viewToChange()
{
    record_->dropTexture();
    return view();
}

} // namespace KEXSDK
