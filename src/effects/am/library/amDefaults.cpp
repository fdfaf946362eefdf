// The fields of a new block.
#include "effects/am/library/amDefaults.h"

namespace KEXSDK::am {

AmEffectParams defaultsOf(i32 id)
{
    AmEffectParams block{};
    block.size = sizeof(AmEffectParams);
    block.id = id;
    block.posX = block.posY = 50;
    block.right = 100;
    block.dirty = kAmDirtyAll;
    if (kFilters.contains(id)) {
        block.pickX = block.pickY = 50;
        block.work3 = block.work4 = block.work6 = block.work7 = 100;
    }
    const EffectRow* const row = findEffect(id);
    const Defaults own = row ? row->defaults : Defaults{};
    block.percent = own.percent;
    block.radius = own.radius;
    block.top = own.top;
    block.bottom = own.bottom;
    block.red = own.red;
    block.green = own.green;
    block.blue = own.blue;
    block.alpha = own.alpha;
    block.variant = own.variant;
    block.direction = own.direction;
    block.usageMask = own.usageMask;
    return block;
}

} // namespace KEXSDK::am
