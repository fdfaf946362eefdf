// A graph of effects that runs: one engine node for each node of the description.
#pragma once

#include "host/RunningNode.h"

#include <optional>
#include <string_view>
#include <vector>

namespace host {

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
    /// that an effect refuses, a file that a parameter or a mask names and that does not exist or cannot be
    /// used.
    EffectGraph(const GraphDescription& description, unsigned width, unsigned height);

    unsigned sources() const { return unsigned(sources_.size()); }

    /// Sets the picture for "source" (0), "source-2" (1)...; it must have the graph's size and outlive the
    /// runs, which leave it as it is. Its pixels may change between runs. Throws GraphError when the size
    /// differs.
    void setSource(CEffectImage* image, unsigned index = 0);
    void setSource(const Image& image, unsigned index = 0) { setSource(image.handle(), index); }

    /// Sets the loudness of a band over the clip (LevelCurve) for what follows it; the description's bands()
    /// names them. Until then its level is 0. Throws GraphError: a rate that is not above 0.
    void setCurve(const SoundBand& band, std::span<const float> samples, double rate);

    /// Sets times and parameters, then evaluates every node once, inputs before users. Where an effect's
    /// alpha is loose, opaque inputs give an opaque picture. The image belongs to the graph and holds until
    /// the next run. Throws GraphError.
    /// @param unchanged  receives the ids of nodes that gave the bytes of their first input although their
    /// mix
    ///                   is above 0, which costs time
    CEffectImage* run(const FrameTime& time, std::vector<std::string>* unchanged = nullptr);

    /// Does what run() does and puts the picture into an image of the graph's size, which may be gone after
    /// the call; the last effect draws into it directly where it can. It may be a source. Throws GraphError.
    void runInto(CEffectImage* target, const FrameTime& time);

    /// Goes on as a fresh graph does, after a jump in time: effects forget what they remember of frames.
    /// Values that were set stay. The thread's random numbers go on, and so does what all nodes of an effect
    /// share. Throws GraphError.
    void reset();

    // Of nodes by their ids; an empty id means the only node. Parameters go by name or title, as
    // parameterNamed() takes them. Throw GraphError: no such node, no such parameter.

    /// A constant in place of what the description says, from the next frame on. Throws also as
    /// ParameterTrack and the constructor do; the parameter keeps its values then.
    void setParameter(std::string_view node, std::string_view name, const ParameterValue& value);
    /// The value that a frame at that time has; no value when neither the description nor the effect has one.
    /// Times of the effect's clock are those of the frame before, unless the description sets them.
    std::optional<ParameterValue> parameter(
        std::string_view node, std::string_view name, const FrameTime& time) const;
    const KEXSDK::EffectInfo& effectOf(std::string_view node) const;
    /// A constant mix from the next frame on; what lies outside 0..1 counts as the nearer end.
    void setMix(std::string_view node, double mix);
    /// The mix of a frame at that time, 0..1.
    double mix(std::string_view node, const FrameTime& time) const;

private:
    void evaluate(const FrameTime& time, CEffectImage* target, std::vector<std::string>* unchanged);
    CEffectImage* imageFor(const GraphNode& node, std::string_view input) const;
    void findChains();
    bool joins(std::size_t index, const FrameTime& time) const;

    unsigned width_;
    unsigned height_;
    std::vector<RunningNode> nodes_; ///< in order of evaluation; the output is the last
    std::vector<bool> readsLast_;    ///< whether a node, and nothing else, reads the one before it
    std::vector<CEffectImage*> sources_;
    NodePictures pictures_;
};

} // namespace host
