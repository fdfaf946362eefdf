// Bilinear scaling of pictures.
#include "pictures/PictureCodecs.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace pictures {

namespace {

/// Where a pixel of the scaled picture lies along one side of the source: between two pixels of it, in
/// 4096ths.
struct Between {
    u32 first;
    u32 second;
    u32 weight; ///< of the second one
};

std::vector<Between> positions(u32 from, u32 to)
{
    constexpr u64 kHalf = 1 << 11;
    const u64 step = (u64{from} << 48) / to;
    std::vector<Between> all(to);
    u64 middle = step / 2 - 1; // of the pixel, in the source's pixels, 48 bits behind the point
    for (Between& position : all) {
        const u64 left = std::max(middle >> 36, kHalf) - kHalf;
        const u32 first = u32(left >> 12);
        position = {first, std::min(first + 1, from - 1), u32(left & 0xFFF)};
        middle += step;
    }
    return all;
}

/// Blends four pixels of the source for each pixel. The sums stay below 2^32: the weights of four pixels are
/// 2^24 together.
void scalePixels(const u8* from, u32 fromWidth, const std::vector<Between>& columns,
    const std::vector<Between>& rows, u8* to)
{
    for (const Between& y : rows) {
        const u8* const upper = from + std::size_t{y.first} * fromWidth * 4;
        const u8* const lower = from + std::size_t{y.second} * fromWidth * 4;
        for (const Between& x : columns) {
            const u32 both = x.weight * y.weight;
            const u32 right = (x.weight << 12) - both;
            const u32 below = (y.weight << 12) - both;
            const u32 here = (1u << 24) - right - below - both;
            const u32 left = x.first * 4;
            const u32 next = x.second * 4;
            for (u32 channel = 0; channel < 4; ++channel)
                *to++ = u8((upper[left + channel] * here + upper[next + channel] * right
                               + lower[left + channel] * below + lower[next + channel] * both + (1u << 23))
                    >> 24);
        }
    }
}

} // namespace

bool scale(Decoded& picture, u32 width, u32 height)
try {
    if (!picture.pixels || width == 0 || height == 0 || width > kMaxSide || height > kMaxSide)
        return false;
    if (picture.width == width && picture.height == height)
        return true;
    std::unique_ptr<u8[], Free> scaled(
        static_cast<u8*>(std::malloc(std::size_t{width} * height * 4))); // as Free releases it
    if (!scaled)
        return false;
    scalePixels(picture.pixels.get(), picture.width, positions(picture.width, width),
        positions(picture.height, height), scaled.get());
    picture.pixels = std::move(scaled);
    picture.width = width;
    picture.height = height;
    return true;
} catch (const std::bad_alloc&) { // no memory for the positions
    return false;
}

} // namespace pictures
