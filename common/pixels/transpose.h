// Rows of pixels to columns and back, for loops that step along rows and take many rows at once.
#pragma once

#include "pixels/Pixel.h"

#include <array>

namespace pixels {

namespace detail {

using EightWords [[gnu::vector_size(32)]] = u32;

} // namespace detail

/// to[x * toStep + y] = from[y * fromStep + x] for x and y below 8: words, whose steps count in bytes. The
/// squares do not overlap. Call it inside widest().
inline void transposeEight(const u8* from, std::ptrdiff_t fromStep, u8* to, std::ptrdiff_t toStep)
{
    using detail::EightWords;
    std::array<EightWords, 8> a;
    for (std::size_t i = 0; i < 8; ++i)
        std::memcpy(&a[i], from + std::ptrdiff_t(i) * fromStep, sizeof a[i]);
    // Pairs of words, then fours, then eights.
    std::array<EightWords, 8> b;
    for (std::size_t i = 0; i < 8; i += 2) {
        b[i] = __builtin_shufflevector(a[i], a[i + 1], 0, 8, 1, 9, 4, 12, 5, 13);
        b[i + 1] = __builtin_shufflevector(a[i], a[i + 1], 2, 10, 3, 11, 6, 14, 7, 15);
    }
    for (std::size_t i = 0; i < 8; i += 4) {
        a[i] = __builtin_shufflevector(b[i], b[i + 2], 0, 1, 8, 9, 4, 5, 12, 13);
        a[i + 1] = __builtin_shufflevector(b[i], b[i + 2], 2, 3, 10, 11, 6, 7, 14, 15);
        a[i + 2] = __builtin_shufflevector(b[i + 1], b[i + 3], 0, 1, 8, 9, 4, 5, 12, 13);
        a[i + 3] = __builtin_shufflevector(b[i + 1], b[i + 3], 2, 3, 10, 11, 6, 7, 14, 15);
    }
    for (std::size_t i = 0; i < 4; ++i) {
        b[i] = __builtin_shufflevector(a[i], a[i + 4], 0, 1, 2, 3, 8, 9, 10, 11);
        b[i + 4] = __builtin_shufflevector(a[i], a[i + 4], 4, 5, 6, 7, 12, 13, 14, 15);
    }
    for (std::size_t i = 0; i < 8; ++i)
        std::memcpy(to + std::ptrdiff_t(i) * toStep, &b[i], sizeof b[i]);
}

/// The same for x < width and y < height.
inline void transpose(
    const u8* from, std::ptrdiff_t fromStep, u8* to, std::ptrdiff_t toStep, int width, int height)
{
    for (int y = 0; y < height; y += 8)
        for (int x = 0; x < width; x += 8) {
            const u8* const source = from + y * fromStep + std::ptrdiff_t(x) * 4;
            u8* const target = to + x * toStep + std::ptrdiff_t(y) * 4;
            if (x + 8 <= width && y + 8 <= height) {
                transposeEight(source, fromStep, target, toStep);
                continue;
            }
            for (int i = 0; i < height - y && i < 8; ++i)
                for (int k = 0; k < width - x && k < 8; ++k)
                    std::memcpy(target + k * toStep + std::ptrdiff_t(i) * 4,
                        source + i * fromStep + std::ptrdiff_t(k) * 4, 4);
        }
}

} // namespace pixels
