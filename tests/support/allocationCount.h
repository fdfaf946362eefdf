// How often this program has asked for memory with operator new.
#pragma once

#include <cstddef>

namespace test {

/// False under the sanitizers, which bring an operator new of their own.
extern const bool kCountsAllocations;

/// Allocations of all threads since the program started.
std::size_t allocationCount();

} // namespace test
