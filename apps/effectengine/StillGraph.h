// Graphs of effects over single pictures, which effects with a history see as a clip that stands still.
#pragma once

#include "host/EffectGraph.h"

#include <optional>
#include <span>

namespace tool {

/// A graph over pictures, at one moment or at several. Effects with a history have seen the pictures before,
/// at the frame rate and for as many frames as they depend on.
class StillGraph {
public:
    /// Needs a running engine. The pictures are the graph's sources in their order, all of one size; they
    /// must outlive this object, which leaves them as they are. Throws GraphError.
    StillGraph(const host::GraphDescription& description, std::span<const host::Image> pictures);

    /// The picture at a moment; it belongs to the graph and holds until the next call. Moments in ascending
    /// order go on from each other. Throws GraphError, and when a stop is asked.
    CEffectImage* at(const host::FrameTime& time);

    /// A line for each effect that left its input in the last picture as it was because it lacked something,
    /// and what it lacked. Effects that were switched off have none. Throws as above.
    std::vector<std::string> idleEffects();

private:
    void begin();
    CEffectImage* show(const host::FrameTime& time, std::vector<std::string>* unchanged = nullptr);
    std::string wantOf(const host::GraphNode& node) const;

    host::GraphDescription description_;
    std::span<const host::Image> pictures_;
    std::vector<host::Image> inputs_; ///< copies, for effects may write to them
    host::GraphFacts facts_;
    std::optional<host::EffectGraph> graph_;
    long long seen_ = 0; ///< frames that effects with a history have seen
    host::FrameTime last_;
};

} // namespace tool
