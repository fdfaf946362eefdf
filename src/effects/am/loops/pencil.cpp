// Greys of a row, and the pencil's lines among them.
#include "effects/am/loops/pencil.h"

#include "effects/am/library/amScratch.h"

namespace KEXSDK::am {

void GreyMaker::operator()(int y, u8* to) const
{
    pixels::widest([=, from = src.row(y).data(), width = src.width()] {
        pixels::eachIndex(0, width, [=](int x) { to[x] = u8(y4(pixels::load(from + x))); });
    });
}

const u32* dodgeReciprocals(AmEffectParams& block)
{
    if (!ensureScratchC(block, sizeof kDodgeReciprocals, kAmDirtyTable))
        return nullptr;
    u32* const table = static_cast<u32*>(block.scratchC);
    if (takeDirty(block, kAmDirtyTable))
        std::ranges::copy(kDodgeReciprocals, table);
    return table;
}

void drawWithPencil(pixels::RowsAround greys, const u32* reciprocals, u8* to, int width)
{
    const pixels::Scratch<u8> largest{std::size_t(width)};
    pixels::largestOfNine(greys, 1, largest.data(), width);
    pixels::widest([=, most = largest.data()] {
        pixels::eachIndex(1, width - 1,
            [=](int x) { to[x] = u8(std::min(reciprocals[most[x]] * greys.row[x] >> 16, 255u)); });
    });
}

} // namespace KEXSDK::am
