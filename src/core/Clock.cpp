// The engine's only call for the time of the operating system, and the pinned value.
#include "core/Clock.h"

#include <atomic>
#include <limits>

namespace core {

namespace {

constexpr std::time_t kRunning = std::numeric_limits<std::time_t>::min();
std::atomic<std::time_t> pinned{kRunning};

} // namespace

std::time_t now() noexcept
{
    const std::time_t held = pinned.load();
    return held == kRunning ? std::time(nullptr) : held;
}

void pinTime(std::optional<std::time_t> seconds) noexcept { pinned.store(seconds.value_or(kRunning)); }

} // namespace core
