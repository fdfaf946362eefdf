// A fixed pattern by which samples lose bits without bands: the same for every frame, thread and machine.
#pragma once

#include <array>
#include <cstddef>

namespace tool::media {

constexpr int kDitherSize = 8;

/// The place of a sample among the 64 of the pattern, 0 to 63; neighbours are far apart.
constexpr int ditherRank(int x, int y)
{
    int rank = 0;
    for (int bit = 0; bit < 3; ++bit)
        rank = rank << 2 | ((x ^ y) >> bit & 1) << 1 | (y >> bit & 1);
    return rank;
}

/// What is added to the samples of a row, at x modulo 8, before they lose `bits` bits: of the pattern, or
/// half a step each, which rounds.
constexpr std::array<int, kDitherSize> narrowingOffsets(int row, int bits, bool dither)
{
    std::array<int, kDitherSize> offsets{};
    for (int x = 0; x < kDitherSize; ++x)
        offsets[std::size_t(x)] =
            dither ? ((2 * ditherRank(x, row % kDitherSize) + 1) << bits) >> 7 : 1 << (bits - 1);
    return offsets;
}

} // namespace tool::media
