// Straight and premultiplied colours of a pixel, each way exact: the nearest byte to the product or quotient.
#pragma once

#include "pixels/Pixel.h"

#include <algorithm>

namespace host {

/// The pixel with its colours times alpha / 255. (No product is a half: 255 is odd.)
constexpr pixels::Bgra premultiplied(pixels::Bgra p)
{
    // Blue and red share a word. (x + x / 256) / 256 with x = c * a + 128 is the quotient by 255.
    constexpr u32 kBlueRed = 0x00FF00FF;
    const u32 word = toWord(p);
    const u32 a = p.a;
    const u32 blueRed = (word & kBlueRed) * a + 0x00800080;
    const u32 green = u32(p.g) * a + 0x80;
    return pixels::fromWord(((blueRed + (blueRed >> 8 & kBlueRed)) >> 8 & kBlueRed)
        | ((green + (green >> 8)) & 0xFF00) | (word & 0xFF000000));
}

/// The pixel with its colours times 255 / alpha, a half upwards, at most 255; colours without alpha become 0.
constexpr pixels::Bgra straightened(pixels::Bgra p)
{
    // The quotient plus a half is a multiple of 1 / (2 a), so 1 / 510 at least away from any other whole
    // number. Single precision may take less than 2^-14 from it: that much, and more, is added before the
    // fraction goes.
    constexpr float kHalfAndError = 0.5f + 1.0f / 2048;
    const int a = p.a;
    const float scale = 255.0f / float(std::max(a, 1));
    const auto colour = [=](int c) { return u8(int(float(std::min(c, a)) * scale + kHalfAndError)); };
    return {colour(p.b), colour(p.g), colour(p.r), p.a};
}

} // namespace host
