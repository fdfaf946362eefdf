// operator new that counts.
#include "support/allocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations{0};

} // namespace

namespace test {

std::size_t allocationCount() { return allocations.load(); }

} // namespace test

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

const bool test::kCountsAllocations = false;

#else

const bool test::kCountsAllocations = true;

namespace {

void* counted(std::size_t size, std::size_t alignment)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    void* memory = nullptr;
    if (posix_memalign(&memory, alignment < sizeof(void*) ? sizeof(void*) : alignment, size) != 0)
        throw std::bad_alloc();
    return memory;
}

} // namespace

// The array and nothrow forms call these.
void* operator new(std::size_t size) { return counted(size, alignof(std::max_align_t)); }
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return counted(size, std::size_t(alignment));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

#endif
