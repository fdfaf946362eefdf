// Random numbers that repeat: graphs begin with the same ones while a seed is set.
#pragma once

#include "core/Types.h"

#include <optional>

namespace KEXSDK::seededRandom {

/// Pins the clock, and the tables that are seeded from it, to the seed; no value lets the clock run. For the
/// start of the engine: no node may exist.
void set(std::optional<i64> seed);

/// To be called before a host's node is made. With a seed set, the calling thread's random numbers and the
/// rain start anew if this is the first node since graphEnds(), or ever: they do not depend on what was shown
/// before.
void nodeBegins();

/// To be called when the thread evaluates or releases nodes: the next one to be made belongs to another
/// graph.
void graphEnds() noexcept;

} // namespace KEXSDK::seededRandom
