// Counts how often this program has asked for memory with operator new, and can let one request fail.
#pragma once

#include <cstddef>

namespace test {

/// False under the sanitizers, which bring an operator new of their own.
extern const bool kCountsAllocations;

/// Allocations of all threads since the program started.
std::size_t allocationCount();

/// Lets one allocation throw std::bad_alloc: the one with that number, counted from 1 on, of those that this
/// program asks for from now on, and the rendering library if it is to, on other threads than the caller's.
/// What cannot bear a failure is not counted: drivers and compilers, and the rendering library's strings (the
/// destructors of its log's streams make some, and an entity that cannot copy its name is destroyed without
/// the mesh that this needs).
void failAllocation(long number, bool inRenderingLibrary);

/// Ends what failAllocation() began. @return whether an allocation failed
bool allocationFailed();

} // namespace test
