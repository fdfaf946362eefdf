// Fills the noise table, once per process.
#include "effects/am/library/amTables.h"

#include "core/Clock.h"
#include "core/Random.h"

#include <mutex>

namespace KEXSDK::am {

namespace {

std::array<u8, 1024> randomBytes;
std::once_flag built;

} // namespace

const std::array<u8, 1024>& amRandomBytes() { return randomBytes; }

void buildGlobalTables()
{
    std::call_once(built, [] {
        pixels::RandomGenerator& random = pixels::threadRandom();
        random.seed(u32(core::now()));
        for (u8& byte : randomBytes)
            byte = u8(random.next());
    });
}

} // namespace KEXSDK::am
