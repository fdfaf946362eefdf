// The blocks behind buffers: zeroed, aligned, and on huge pages where the kernel has them.
#include "pixels/Buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace pixels {

namespace {

std::atomic<std::size_t> limit{std::numeric_limits<std::size_t>::max()};

// Vector loads that straddle two cache lines take twice as long.
constexpr std::size_t kAlignment = 64;

// Asks for huge pages, which save most of the page faults of the first frames and most address translations
// afterwards. A kernel without them ignores the request.
void wishForHugePages(void* block, std::size_t bytes) noexcept
{
    constexpr std::size_t kWorthwhile = std::size_t(4) << 20;
    if (bytes < kWorthwhile)
        return;
    const auto page = std::uintptr_t(sysconf(_SC_PAGESIZE));
    const auto start = (reinterpret_cast<std::uintptr_t>(block) + page - 1) / page * page;
    const auto end = (reinterpret_cast<std::uintptr_t>(block) + bytes) / page * page;
    madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}

} // namespace

void limitBuffers(std::size_t mostBytes) noexcept { limit.store(mostBytes, std::memory_order_relaxed); }

namespace detail {

// calloc hands out untouched pages that are zero already; aligned_alloc would have to write them all. The
// address that calloc gave stands just before the aligned block.
Block zeroedBlock(std::size_t bytes) noexcept
{
    constexpr std::size_t kExtra = kAlignment + sizeof(void*);
    if (bytes > limit.load(std::memory_order_relaxed)
        || bytes > std::numeric_limits<std::size_t>::max() - kExtra)
        return nullptr;
    void* const raw = std::calloc(bytes + kExtra, 1);
    if (!raw)
        return nullptr;
    const auto lowest = reinterpret_cast<std::uintptr_t>(raw) + sizeof(void*);
    void** const aligned = reinterpret_cast<void**>((lowest + kAlignment - 1) / kAlignment * kAlignment);
    wishForHugePages(aligned, bytes);
    aligned[-1] = raw;
    return Block(aligned);
}

void Freed::operator()(void* block) const noexcept { std::free(static_cast<void**>(block)[-1]); }

} // namespace detail
} // namespace pixels
