// operator new that counts.
#include "support/allocationCount.h"

#include <link.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>

namespace {

std::atomic<std::size_t> allocations{0};

// Which allocation is to fail: 0 for none.
std::atomic<long> untilFailure{0};
std::atomic<std::thread::id> spared;

struct Module {
    std::uintptr_t begin;
    std::uintptr_t end;
};
std::array<Module, 16> modules{};
std::size_t moduleCount = 0;

int noteModule(dl_phdr_info* info, std::size_t, void*)
{
    const bool isOurs = !info->dlpi_name[0] || std::strstr(info->dlpi_name, "libOgre")
        || std::strstr(info->dlpi_name, "RenderSystem_GL") || std::strstr(info->dlpi_name, "Plugin_");
    for (int i = 0; isOurs && i < info->dlpi_phnum; ++i)
        if (const auto& part = info->dlpi_phdr[i];
            part.p_type == PT_LOAD && (part.p_flags & PF_X) && moduleCount < modules.size())
            modules[moduleCount++] = {
                info->dlpi_addr + part.p_vaddr, info->dlpi_addr + part.p_vaddr + part.p_memsz};
    return 0;
}

} // namespace

namespace test {

std::size_t allocationCount() { return allocations.load(); }

void failAllocation(long number)
{
    moduleCount = 0;
    dl_iterate_phdr(noteModule, nullptr);
    spared = std::this_thread::get_id();
    untilFailure = number;
}

bool allocationFailed() { return untilFailure.exchange(0) == 0; }

} // namespace test

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

const bool test::kCountsAllocations = false;

#else

const bool test::kCountsAllocations = true;

namespace {

bool isToFail(const void* caller)
{
    if (untilFailure.load(std::memory_order_relaxed) <= 0 || spared.load() == std::this_thread::get_id())
        return false;
    for (std::size_t i = 0; i < moduleCount; ++i)
        if (const auto address = reinterpret_cast<std::uintptr_t>(caller);
            address >= modules[i].begin && address < modules[i].end)
            return --untilFailure == 0;
    return false;
}

void* counted(std::size_t size, std::size_t alignment, const void* caller)
{
    if (isToFail(caller))
        throw std::bad_alloc();
    allocations.fetch_add(1, std::memory_order_relaxed);
    void* memory = nullptr;
    if (posix_memalign(&memory, alignment < sizeof(void*) ? sizeof(void*) : alignment, size) != 0)
        throw std::bad_alloc();
    return memory;
}

} // namespace

// The array and nothrow forms call these.
void* operator new(std::size_t size)
{
    return counted(size, alignof(std::max_align_t), __builtin_return_address(0));
}
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return counted(size, std::size_t(alignment), __builtin_return_address(0));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

#endif
