// A graph of effects as data: what users write, before any effect exists. docs/graphs.md has the file form.
#pragma once

#include "facts/EffectInfo.h"
#include "host/ParameterTrack.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The part of the clip in which a node's own time runs: from 0 at `start` to `duration`, both in seconds.
/// Before and after it the node's time stands still, so a transition shows its first or its last picture.
struct NodeWindow {
    double start = 0;
    double duration = 0;
};

/// The built-in parameter of every node: how much of the effect shows.
inline constexpr auto kMix =
    KEXSDK::Param<float>{"mix", 1.0f, {0, 1}, "how much of the effect shows: 0 the input, 1 the effect"};

/// Where a node's effect shows: at each pixel the luma of a picture times its alpha, from 0 (the input) to
/// 255. The picture is a file or what feeds an input.
struct NodeMask {
    std::string picture; ///< a file's path, scaled to the graph's size; or empty
    std::string node;    ///< as in GraphNode::inputs; or empty
    bool invert = false;
    double feather = 0; ///< how far edges reach to both sides when they are softened, in pixels
};

struct GraphNode {
    std::string id;
    const KEXSDK::EffectInfo* effect = nullptr;
    std::vector<ParameterTrack> parameters;
    /// What feeds each input: a node's id, "source" for the host's first picture, "source-2" for its second.
    std::vector<std::string> inputs;
    std::optional<NodeWindow> window;
    std::optional<ParameterTrack> mix; ///< of kMix
    std::optional<NodeMask> mask;

    /// What has to be drawn before it: its inputs, and what its mask takes.
    std::vector<std::string_view> dependencies() const;
    /// Whether it has values for one of its effect's parameters.
    bool sets(const KEXSDK::ParamInfo& info) const;

    /// Gives a band's curve to all that follows it; see LevelCurve.
    void setCurve(const SoundBand& band, std::span<const float> samples, double rate);
};

/// What a host must know before it cuts a clip into parts.
struct GraphFacts {
    /// How many earlier frames the last node's output depends on, along the longest path.
    int historyFrames = 0;
    bool needsGpu = false;
    std::vector<std::string> fromStart; ///< nodes whose frames depend on everything since the first one
    std::vector<std::string> random;    ///< nodes that draw random numbers
};

/// Nodes, what feeds them, and their parameters. Made from a command line with append() and setParameter(),
/// or read with loadGraph(); finish() completes and checks it. The functions throw GraphError.
class GraphDescription {
public:
    std::string title;
    std::vector<GraphNode> nodes;
    std::string output; ///< id of the node whose image is the result; append() sets it

    /// Adds an effect, as effectNamed() finds it, that takes the output so far, or the source, as its first
    /// input and becomes the output; further inputs take the host's second and later pictures. An empty id is
    /// chosen.
    GraphNode& append(std::string_view effect, const std::string& id = {});

    /// "NAME=VALUE" for the output node, with a name as parameterNamed() takes it. A second value for a
    /// parameter replaces the first.
    void setParameter(std::string_view assignment);

    /// Checks ids and connections, and sorts the nodes into an order of evaluation that keeps
    /// the given one where it can. Nodes get the values that hosts are to store (ParamInfo::hostDefault).
    void finish();

    /// How many pictures the host must supply; at least 1.
    unsigned sources() const;

    /// Of the nodes that the output depends on.
    GraphFacts facts() const;

    /// The bands of sound whose curves the nodes that the output depends on follow, each once.
    std::vector<SoundBand> bands() const;
    void setCurve(const SoundBand& band, std::span<const float> samples, double rate);

    /// Values outside advised ranges and nodes that nothing uses, a line each.
    std::vector<std::string> warnings() const;

    /// Indices of the nodes that the output depends on, in order of evaluation; the output is the last.
    std::vector<std::size_t> used() const;
};

/// "source" and its kin: 0 for "source", 1 for "source-2"; no value for a node's id.
std::optional<unsigned> sourceIndex(std::string_view input);
std::string sourceName(unsigned index);

/// The effect with this GUID, or with this name or title in any spelling (meant() in host/names.h). Throws
/// GraphError: there is none, with the nearest one; the word can mean several.
const KEXSDK::EffectInfo& effectNamed(std::string_view word);

/// The parameter of an effect with this name or title, as above.
const KEXSDK::ParamInfo& parameterNamed(const KEXSDK::EffectInfo& effect, std::string_view word);

/// A JSON file, finished. Paths in it count from its own directory. Throws GraphError.
GraphDescription loadGraph(const std::filesystem::path& file);

/// JSON text, finished; `name` stands for it in messages, `directory` is where its paths count from.
GraphDescription parseGraph(
    const std::string& text, const std::string& name, const std::filesystem::path& directory);

/// The graph as JSON; paths of files become absolute.
std::string graphText(const GraphDescription& graph);

} // namespace host
