// Wall-clock seconds, asked in one place so that a seed and tests can hold them still.
#pragma once

#include <ctime>
#include <optional>

namespace core {

/// Seconds since the epoch, or the pinned value. Random tables take their seeds from here.
std::time_t now() noexcept;

/// Makes now() answer this value on every thread until pinned again; no value lets the clock run.
void pinTime(std::optional<std::time_t> seconds) noexcept;

} // namespace core
