// Whether a graph can run over a part of a clip, and where it must begin for that.
#pragma once

#include "host/GraphDescription.h"

#include <string>
#include <vector>

namespace host {

/// Why the graph must run from frame 0 on, a line per node: it remembers everything, goes on drawing
/// random numbers, or has keyframes for attributes of particles. Empty when it can begin anywhere. (A node
/// that remembers a few frames draws only its tables, which the seed holds.)
std::vector<std::string> startBound(const GraphDescription& graph);

/// Stands for all frames.
inline constexpr long long kAllFrames = -1;

/// How many frames before a wanted one the graph must see, or kAllFrames.
long long preRollOf(const GraphDescription& graph);

} // namespace host
