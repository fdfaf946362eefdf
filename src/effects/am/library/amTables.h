// Tables that all effects of the library share.
#pragma once

#include "core/Types.h"
#include "pixels/numbers.h"

#include <array>
#include <optional>

namespace KEXSDK::am {

/// Entry 256 + v is v saturated to 0..255, for v in -256..511.
inline constexpr auto amClampTable = [] {
    std::array<u8, 768> table{};
    for (int i = 0; i < 768; ++i)
        table[std::size_t(i)] = pixels::clampByte(i - 256);
    return table;
}();

/// Noise for effects that must not draw a random number per pixel.
const std::array<u8, 1024>& amRandomBytes();

/// Fills amRandomBytes once per process; the calling thread's generator is seeded with the time for it. While
/// the tables are pinned they stay, and the generator is left as if it had drawn them now.
void buildGlobalTables();

/// Fills amRandomBytes from a seed; no value lets go of it, and what was filled stays. Nothing of the library
/// may be at work.
void pinGlobalTables(std::optional<u32> seed);

} // namespace KEXSDK::am
