// How often this program has asked for memory with operator new.
#pragma once

#include <cstddef>

namespace test {

/// False under the sanitizers, which bring an operator new of their own.
extern const bool kCountsAllocations;

/// Allocations of all threads since the program started.
std::size_t allocationCount();

/// Makes one of the allocations that follow throw std::bad_alloc: the one with that number, from 1 on, of
/// those that this program, and the rendering library if it is to, ask for on other threads. What cannot bear
/// it is not counted: drivers and compilers, and the rendering library's strings (the destructors of its
/// log's streams make some, and an entity that cannot copy its name is destroyed without the mesh that this
/// needs).
void failAllocation(long number, bool inRenderingLibrary);

/// Ends that. @return whether there were as many
bool allocationFailed();

} // namespace test
