// operator new that counts.
#include "support/allocationCount.h"

#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <new>
#include <string_view>
#include <thread>

namespace {

std::atomic<std::size_t> allocations{0};

// How many allocations are left until one is to fail; 0 for none.
std::atomic<long> untilFailure{0};
std::atomic<std::thread::id> spared;
bool renderingLibraryFails = false;

struct Module {
    enum class Kind { program, renderingLibrary, standardLibrary };

    std::uintptr_t begin;
    std::uintptr_t end;
    Kind kind;
};
std::array<Module, 16> modules{};
std::size_t moduleCount = 0;

int noteModule(dl_phdr_info* info, std::size_t, void*)
{
    const std::string_view name = info->dlpi_name;
    const auto isNamed = [&](const char* part) { return name.find(part) != std::string_view::npos; };
    Module::Kind kind = Module::Kind::program;
    if (isNamed("libstdc++"))
        kind = Module::Kind::standardLibrary;
    else if (isNamed("libOgre") || isNamed("RenderSystem_GL") || isNamed("Plugin_"))
        kind = Module::Kind::renderingLibrary;
    else if (!name.empty())
        return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i)
        if (const auto& part = info->dlpi_phdr[i];
            part.p_type == PT_LOAD && (part.p_flags & PF_X) && moduleCount < modules.size())
            modules[moduleCount++] = {
                info->dlpi_addr + part.p_vaddr, info->dlpi_addr + part.p_vaddr + part.p_memsz, kind};
    return 0;
}

const Module* moduleOf(const void* code)
{
    const auto address = reinterpret_cast<std::uintptr_t>(code);
    const auto end = modules.begin() + moduleCount;
    const auto found = std::find_if(
        modules.begin(), end, [&](const Module& m) { return address >= m.begin && address < m.end; });
    return found == end ? nullptr : &*found;
}

} // namespace

namespace test {

std::size_t allocationCount() { return allocations.load(); }

void failAllocation(long number, bool inRenderingLibrary)
{
    renderingLibraryFails = inRenderingLibrary;
    moduleCount = 0;
    void* first[1];
    backtrace(first, 1); // the first call loads a library
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

bool isCounted(const void* caller)
{
    const Module* module = moduleOf(caller);
    if (!module || module->kind != Module::Kind::standardLibrary)
        return module && (module->kind == Module::Kind::program || renderingLibraryFails);
    std::array<void*, 24> frames;
    const auto end = frames.begin() + backtrace(frames.data(), int(frames.size()));
    auto frame = std::find(frames.begin(), end, caller);
    for (; frame != end && module && module->kind == Module::Kind::standardLibrary; ++frame)
        module = moduleOf(*frame);
    return module && module->kind == Module::Kind::program;
}

bool isToFail(const void* caller)
{
    if (untilFailure.load(std::memory_order_relaxed) <= 0 || spared.load() == std::this_thread::get_id())
        return false;
    return isCounted(caller) && --untilFailure == 0;
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

// The array and nothrow forms of operator new call these.
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
