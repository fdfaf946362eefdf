// A graph of effects that runs: one engine node for each node of the description.
#pragma once

#include "host/GraphDescription.h"
#include "host/Host.h"

#include <vector>

namespace host {

/// Stores a value under the parameter's name, as its type. @return whether the effect took it
bool store(Filter& filter, const KEXSDK::ParamInfo& info, const ParameterValue& value);

/// Makes and runs the nodes of a graph. Needs a running engine. One thread makes and runs a graph: random
/// numbers are drawn per thread.
///
///     GraphDescription description = loadGraph("look.json");
///     EffectGraph graph(description, width, height);
///     graph.setSource(picture);
///     for (...) output = graph.run({seconds, frameRate, total});
class EffectGraph {
public:
    /// Makes the nodes that the output depends on, for pictures of width x height. The description must be
    /// finished; it is copied. Throws GraphError: an effect that is not available here (the GPU), a value
    /// that an effect refuses, a file that a parameter names and that does not exist.
    EffectGraph(const GraphDescription& description, unsigned width, unsigned height);

    unsigned sources() const { return description_.sources(); }

    /// Sets the picture for "source" (0), "source-2" (1)...; it must have the graph's size and outlive the
    /// runs. Its pixels may change between runs. Throws GraphError when the size differs.
    void setSource(const Image& image, unsigned index = 0);

    /// Sets times and parameters, then evaluates every node once, inputs before users. Where an effect's
    /// alpha is loose, opaque inputs give an opaque picture. The image belongs to the graph and holds until
    /// the next run. Throws GraphError.
    /// @param unchanged  receives the ids of nodes that gave the bytes of their first input, which costs time
    CEffectImage* run(const FrameTime& time, std::vector<std::string>* unchanged = nullptr);

private:
    struct Running {
        const GraphNode* node;
        Filter filter;
        std::vector<const ParameterTrack*> animated;
        std::vector<ParameterValue> last; ///< of the animated ones, as they were stored
        CEffectImage* output = nullptr;
    };

    enum class Change { none, some };

    Running make(const GraphNode& node) const;
    Change evaluate(Running& running, const FrameTime& time, bool compare);
    void approach(Running& running, const FrameTime& time);
    void setTimes(Running& running, const FrameTime& time);
    CEffectImage* imageFor(const std::string& input) const;

    GraphDescription description_;
    unsigned width_;
    unsigned height_;
    std::vector<Running> nodes_; ///< in order of evaluation; the output is the last
    std::vector<CEffectImage*> sources_;
};

} // namespace host
