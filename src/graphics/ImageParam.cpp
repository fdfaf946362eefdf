// Pixel memory of images.
#include "graphics/ImageParam.h"

#include <cstring>
#include <new>

namespace KEXSDK {

namespace {

constexpr std::align_val_t kPixelAlignment{64}; // a cache line, and the widest vector register

} // namespace

_ImageParam::~_ImageParam()
{
    usePixels(nullptr);
    externalBuffer = nullptr;
    byteSize = 0;
    released = 1;
}

void _ImageParam::allocatePixels()
{
    pixels = static_cast<u8*>(::operator new[](byteSize, kPixelAlignment));
    std::memset(pixels, 0, byteSize);
    ownsPixels = 1;
}

void _ImageParam::usePixels(u8* memory)
{
    if (ownsPixels && memory != pixels)
        ::operator delete[](pixels, kPixelAlignment);
    ownsPixels = ownsPixels && memory == pixels;
    pixels = memory;
}

void _ImageParam::dropTexture()
{
    gpuOwner = nullptr;
    sharedBuffer.reset();
}

} // namespace KEXSDK
