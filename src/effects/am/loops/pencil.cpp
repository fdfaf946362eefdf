// Loops over grey rows.
#include "effects/am/loops/pencil.h"

#include "effects/am/library/amScratch.h"
#include "pixels/columns.h"

namespace KEXSDK::am {

void greyOut(const pixels::Bgra* from, u8* to, int width)
{
    pixels::widest(
        [=] { pixels::eachIndex(0, width, [=](int x) { to[x] = u8(y4(pixels::load(from + x))); }); });
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

void drawWithPencil(GreyRows greys, const u32* reciprocals, u8* to, int width)
{
    GreyRow largest;
    largestOfNine<1>(greys, largest.data(), width);
    pixels::widest([=, most = largest.data()] {
        pixels::eachIndex(1, width - 1,
            [=](int x) { to[x] = u8(std::min(reciprocals[most[x]] * greys.row[x] >> 16, 255u)); });
    });
}

} // namespace KEXSDK::am
