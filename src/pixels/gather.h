// Pixels fetched from computed places, in loops that vectorise.
#pragma once

#include "pixels/rows.h"

namespace pixels {

/// The pixel at `index` of packed pixels, as a word.
inline u32 wordAt(const u8* pixels, int index)
{
    u32 word;
    std::memcpy(&word, pixels + std::ptrdiff_t(index) * 4, sizeof word);
    return word;
}

/// dst(x, y) = pixel number indexOf(x, y) of src, counted in memory order. Both views are packed, do not
/// overlap, and every index lies inside src. The kernel is copied into each loop; arithmetic only.
template <class Kernel> void gather(ConstView src, View dst, Kernel indexOf)
{
    rows::anyOrderRuns(dst.extent(), [&](int top, int end) {
        widest([=] {
            const u8* const from = src.bytes();
            const int width = dst.width();
            for (int y = top; y < end; ++y) {
                Bgra* const to = dst.row(y).data();
#pragma GCC ivdep
                for (int x = 0; x < width; ++x) {
                    const u32 word = wordAt(from, indexOf(x, y));
                    std::memcpy(to + x, &word, sizeof word);
                }
            }
        });
    });
}

} // namespace pixels
