// Finds the widest vector registers of the processor.
#include "pixels/widest.h"

#include <algorithm>
#include <atomic>

namespace pixels {

namespace {

VectorLevel detected() noexcept
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw")
        && __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"))
        return VectorLevel::avx512;
    if (__builtin_cpu_supports("avx2"))
        return VectorLevel::avx2;
#endif
    return VectorLevel::base;
}

std::atomic<VectorLevel> limit{VectorLevel::avx512};

} // namespace

VectorLevel vectorLevel() noexcept
{
    static const VectorLevel level = detected();
    return std::min(level, limit.load(std::memory_order_relaxed));
}

void limitVectors(VectorLevel most) noexcept { limit.store(most, std::memory_order_relaxed); }

} // namespace pixels
