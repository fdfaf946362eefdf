// Start of the thread's random numbers, once for all nodes that are made in a row. Nodes of the numeric
// library move them on to the state behind that library's table.
#include "engine/seededRandom.h"

#include "core/Clock.h"
#include "core/Random.h"
#include "effects/am/library/amTables.h"
#include "effects/cpu/WaterSurface.h"

#include <atomic>

namespace KEXSDK::seededRandom {

namespace {

std::atomic<unsigned> starts = 0; ///< counts calls of set()
std::atomic<bool> seeded = false;
thread_local unsigned begunIn = 0; ///< the value of `starts` for which this thread makes a graph, 0 for none

} // namespace

void set(std::optional<i64> seed)
{
    core::pinTime(seed);
    am::pinGlobalTables(seed ? std::optional(u32(*seed)) : std::nullopt);
    seeded = seed.has_value();
    ++starts;
}

void nodeBegins()
{
    if (!seeded || begunIn == starts)
        return;
    begunIn = starts;
    pixels::threadRandom() = pixels::RandomGenerator();
    pixels::restartRain();
}

void graphEnds() noexcept { begunIn = 0; }

} // namespace KEXSDK::seededRandom
