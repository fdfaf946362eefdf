// The engine's only call for the time of the operating system, and the pinned value.
#include "core/Clock.h"

#include <atomic>

namespace core {

namespace {

std::atomic<bool> isPinned = false;
std::atomic<std::time_t> pinned = 0;

} // namespace

std::time_t now() noexcept { return isPinned ? pinned.load() : std::time(nullptr); }

void pinTime(std::optional<std::time_t> seconds) noexcept
{
    pinned = seconds.value_or(0);
    isPinned = seconds.has_value();
}

} // namespace core
