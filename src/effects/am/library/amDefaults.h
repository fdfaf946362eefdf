// The three families of ids, and the block that each id starts with.
#pragma once

#include "effects/am/library/amRow.h"

namespace KEXSDK::am {

struct IdRange {
    i32 first;
    i32 last;
    constexpr bool contains(i32 id) const { return id >= first && id <= last; }
};
inline constexpr IdRange kFilters{1, 97};
inline constexpr IdRange kLocals{1025, 1043};
inline constexpr IdRange kBlends{2049, 2206};

/// A new block of that id, without scratch buffers. An id without an effect gets the Defaults of amRow.h.
AmEffectParams defaultsOf(i32 id);

} // namespace KEXSDK::am
