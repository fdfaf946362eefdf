// Fills the noise table, once per process or whenever it is pinned.
#include "effects/am/library/amTables.h"

#include "core/Clock.h"
#include "core/Random.h"

#include <mutex>

namespace KEXSDK::am {

namespace {

std::array<u8, 1024> randomBytes;
std::once_flag built;
std::optional<pixels::RandomGenerator> afterPinned; ///< the state that drawing the pinned table left

pixels::RandomGenerator fill(u32 seed)
{
    pixels::RandomGenerator random(seed);
    for (u8& byte : randomBytes)
        byte = u8(random.next());
    return random;
}

} // namespace

const std::array<u8, 1024>& amRandomBytes() { return randomBytes; }

void buildGlobalTables()
{
    std::call_once(built, [] { pixels::threadRandom() = fill(u32(core::now())); });
    if (afterPinned)
        pixels::threadRandom() = *afterPinned;
}

void pinGlobalTables(std::optional<u32> seed)
{
    afterPinned.reset();
    if (!seed)
        return;
    std::call_once(built, [] {});
    afterPinned = fill(*seed);
}

} // namespace KEXSDK::am
