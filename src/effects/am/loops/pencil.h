// What looks share that draw with a pencil: rows of greys, and lightness relative to the neighbourhood.
#pragma once

#include "effects/am/library/amFrame.h"
#include "pixels/stencil.h"

#include <array>

namespace KEXSDK::am {

/// Makes rows of greys, the y4 of each pixel of src, for the loops of pixels/stencil.h.
struct GreyMaker {
    pixels::ConstView src;
    void operator()(int y, u8* to) const;
};

/// 2^24 / (k + 8). The entry of 0 never counts: it only meets greys of 0.
inline constexpr auto kDodgeReciprocals = [] {
    std::array<u32, 256> values{};
    for (u32 k = 0; k < values.size(); ++k)
        values[k] = (1u << 24) / (k + 8);
    return values;
}();

/// kDodgeReciprocals as an effect of the library keeps them: in scratch C, made when dirty bit 0 is set; null
/// without memory.
const u32* dodgeReciprocals(AmEffectParams& block);

/// to[x] = the grey at x relative to the largest of the nine around it: pencil lines on white, for
/// 1 <= x < width - 1.
void drawWithPencil(pixels::RowsAround greys, const u32* reciprocals, u8* to, int width);

} // namespace KEXSDK::am
