// The memory of blocks and of what effects keep in them.
#pragma once

#include "effects/am/library/amFrame.h"

#include <cstddef>

namespace KEXSDK::am {

// Each of these gives a buffer of the block at least `bytes` bytes. A buffer that is too small is freed and
// its contents are lost. False, with an empty buffer, without memory or for more than 2^31 - 1 bytes.
bool ensureScratchA(AmEffectParams& block, i64 bytes);
bool ensureScratchB(AmEffectParams& block, i64 bytes);
/// @param dirtyBits  set in the block's dirty field when the buffer is a new one
bool ensureScratchC(AmEffectParams& block, i64 bytes, u32 dirtyBits);

void releaseScratch(AmEffectParams& block);

/// Answers whether any of the bits is set, and clears them.
inline bool takeDirty(AmEffectParams& block, u32 bits)
{
    const bool set = (block.dirty & bits) != 0;
    block.dirty &= ~bits;
    return set;
}

/// Memory for blocks and buffers, or null.
void* allocate(std::size_t bytes);
void release(void* memory);

/// For tests: while the gate answers false, allocations fail. Null opens it for good.
void setAllocationGate(bool (*gate)(std::size_t bytes));

} // namespace KEXSDK::am
