// A block's scratch buffers, which only grow, and the allocations behind them.
#include "effects/am/library/amScratch.h"

#include <cstdlib>
#include <limits>

namespace KEXSDK::am {

namespace {

bool (*allocationGate)(std::size_t) = nullptr;

void drop(void*& buffer, i32& capacity)
{
    release(buffer);
    buffer = nullptr;
    capacity = 0;
}

enum class Ensured { failed, kept, renewed };

Ensured ensure(void*& buffer, i32& capacity, i64 bytes)
{
    if (capacity >= bytes)
        return Ensured::kept;
    drop(buffer, capacity);
    if (bytes > std::numeric_limits<i32>::max())
        return Ensured::failed;
    buffer = allocate(std::size_t(bytes));
    if (!buffer)
        return Ensured::failed;
    capacity = i32(bytes);
    return Ensured::renewed;
}

} // namespace

bool ensureScratchA(AmEffectParams& block, i64 bytes)
{
    return ensure(block.scratchA, block.scratchACapacity, bytes) != Ensured::failed;
}

bool ensureScratchB(AmEffectParams& block, i64 bytes)
{
    return ensure(block.scratchB, block.scratchBCapacity, bytes) != Ensured::failed;
}

bool ensureScratchC(AmEffectParams& block, i64 bytes, u32 dirtyBits)
{
    const Ensured result = ensure(block.scratchC, block.scratchCCapacity, bytes);
    if (result == Ensured::renewed)
        block.dirty |= dirtyBits;
    return result != Ensured::failed;
}

void releaseScratch(AmEffectParams& block)
{
    drop(block.scratchB, block.scratchBCapacity);
    drop(block.scratchC, block.scratchCCapacity);
    drop(block.scratchA, block.scratchACapacity);
}

void* allocate(std::size_t bytes)
{
    return allocationGate && !allocationGate(bytes) ? nullptr : std::malloc(bytes);
}

void release(void* memory) { std::free(memory); }

void setAllocationGate(bool (*gate)(std::size_t)) { allocationGate = gate; }

} // namespace KEXSDK::am
