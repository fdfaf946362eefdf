// Evaluation of a graph. Each node runs once a frame and its image is set as input of its users, so a node
// with two users does not run twice. Only chains whose effects work row by row are connected, for the engine
// to draw together.
#include "host/EffectGraph.h"

#include "host/GraphError.h"
#include "text/nearest.h"

#include <algorithm>

namespace host {

namespace {

void requireSize(CEffectImage* image, unsigned width, unsigned height)
{
    unsigned w = 0;
    unsigned h = 0;
    GetImageWidth(image, &w);
    GetImageHeight(image, &h);
    if (w != width || h != height)
        throw GraphError(GraphFault::content,
            "a picture of " + std::to_string(w) + " x " + std::to_string(h) + " for a graph of "
                + std::to_string(width) + " x " + std::to_string(height));
}

} // namespace

EffectGraph::EffectGraph(const GraphDescription& description, unsigned width, unsigned height)
    : width_(width),
      height_(height),
      sources_(description.sources())
{
    for (const std::size_t i : description.used())
        nodes_.emplace_back(description.nodes[i], width, height);
    findChains();
}

// Marks the nodes that take the picture of the one before them as their first input, where no other node
// takes it.
void EffectGraph::findChains()
{
    readsLast_.resize(nodes_.size());
    for (std::size_t i = 1; i < nodes_.size(); ++i) {
        const std::string& last = nodes_[i - 1].node().id;
        std::ptrdiff_t uses = 0;
        for (const RunningNode& running : nodes_)
            uses += std::ranges::count(running.node().dependencies(), last);
        readsLast_[i] = uses == 1 && nodes_[i].node().inputs.front() == last;
    }
}

// Whether a node is evaluated together with the one before it.
bool EffectGraph::joins(std::size_t index, const FrameTime& time) const
{
    return index < nodes_.size() && readsLast_[index] && nodes_[index].chains(time)
        && nodes_[index - 1].chains(time);
}

void EffectGraph::setSource(CEffectImage* image, unsigned index)
{
    requireSize(image, width_, height_);
    if (index < sources_.size())
        sources_[index] = image;
}

CEffectImage* EffectGraph::imageFor(const GraphNode& node, std::string_view input) const
{
    if (const auto source = sourceIndex(input)) {
        if (CEffectImage* const image = sources_[*source])
            return image;
        throw GraphError(GraphFault::content,
            "effect " + node.id + ": there is no picture for its input " + std::string(input));
    }
    return std::ranges::find(nodes_, input, [](const RunningNode& r) { return r.node().id; })->output();
}

void EffectGraph::evaluate(const FrameTime& time, CEffectImage* target, std::vector<std::string>* unchanged)
{
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        RunningNode& running = nodes_[i];
        const GraphNode& node = running.node();
        // Who asks for comparisons needs every picture.
        const bool joined = !unchanged && joins(i, time);
        pictures_.upstream = joined ? &nodes_[i - 1] : nullptr;
        pictures_.inputs.clear();
        for (const std::string& input : node.inputs)
            pictures_.inputs.push_back(joined && pictures_.inputs.empty() ? nullptr : imageFor(node, input));
        if (!unchanged && joins(i + 1, time)) {
            running.hold(time, pictures_);
            continue;
        }
        pictures_.mask = node.mask && !node.mask->node.empty() ? imageFor(node, node.mask->node) : nullptr;
        pictures_.target = &running == &nodes_.back() ? target : nullptr;
        running.run(time, pictures_);
        if (unchanged && running.mix(time) > 0
            && std::ranges::equal(bytesOf(pictures_.inputs.front()), bytesOf(running.output())))
            unchanged->push_back(node.id);
    }
}

CEffectImage* EffectGraph::run(const FrameTime& time, std::vector<std::string>* unchanged)
{
    evaluate(time, nullptr, unchanged);
    return nodes_.back().output();
}

void EffectGraph::runInto(CEffectImage* target, const FrameTime& time)
{
    requireSize(target, width_, height_);
    evaluate(time, target, nullptr);
}

void EffectGraph::reset()
{
    for (RunningNode& running : nodes_)
        running.restart();
}

namespace {

// The node of this id among those that run; the only one for an empty id.
auto& nodeNamed(auto& nodes, std::string_view id)
{
    if (id.empty() && nodes.size() == 1)
        return nodes.front();
    std::vector<std::string_view> ids;
    for (auto& running : nodes) {
        if (running.node().id == id)
            return running;
        ids.push_back(running.node().id);
    }
    throw GraphError(GraphFault::content,
        "no node \"" + std::string(id) + "\" runs in the graph" + text::didYouMean(ids, id));
}

} // namespace

void EffectGraph::setCurve(const SoundBand& band, std::span<const float> samples, double rate)
{
    for (RunningNode& running : nodes_)
        running.setCurve(band, samples, rate);
}

void EffectGraph::setParameter(std::string_view node, std::string_view name, const ParameterValue& value)
{
    RunningNode& running = nodeNamed(nodes_, node);
    running.setParameter(parameterNamed(*running.node().effect, name), value);
}

std::optional<ParameterValue> EffectGraph::parameter(
    std::string_view node, std::string_view name, const FrameTime& time) const
{
    const RunningNode& running = nodeNamed(nodes_, node);
    return running.parameter(parameterNamed(*running.node().effect, name), time);
}

const KEXSDK::EffectInfo& EffectGraph::effectOf(std::string_view node) const
{
    return *nodeNamed(nodes_, node).node().effect;
}

void EffectGraph::setMix(std::string_view node, double mix) { nodeNamed(nodes_, node).setMix(mix); }

double EffectGraph::mix(std::string_view node, const FrameTime& time) const
{
    return nodeNamed(nodes_, node).mix(time);
}

} // namespace host
