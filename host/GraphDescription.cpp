// Building and checking of graph descriptions.
#include "host/GraphDescription.h"

#include "host/GraphError.h"
#include "host/effectList.h"
#include "host/names.h"
#include "text/nearest.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <map>

using KEXSDK::EffectInfo;
using KEXSDK::ParamInfo;

namespace host {

namespace {

constexpr std::string_view kSource = "source";
constexpr unsigned kMostSources = 16;

[[noreturn]] void fail(const std::string& message) { throw GraphError(GraphFault::content, message); }

std::string inQuotes(const std::string& text) { return '"' + text + '"'; }

using NodeIndex = std::map<std::string, std::size_t, std::less<>>;

NodeIndex indexById(const std::vector<GraphNode>& nodes)
{
    NodeIndex index;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].id.empty())
            fail("a node has no id");
        if (sourceIndex(nodes[i].id))
            fail("a node cannot be called " + inQuotes(nodes[i].id)
                + "; that name stands for the host's picture");
        if (!index.emplace(nodes[i].id, i).second)
            fail("two nodes are called " + inQuotes(nodes[i].id));
    }
    return index;
}

std::string nearestNode(const NodeIndex& index, std::string_view typed)
{
    std::vector<std::string_view> names{kSource};
    for (const auto& entry : index)
        names.push_back(entry.first);
    return text::didYouMean(names, typed);
}

void checkConnections(const GraphNode& node, const NodeIndex& index)
{
    const unsigned wanted = node.effect->inputs;
    if (node.inputs.size() > wanted)
        fail("node " + inQuotes(node.id) + " has " + std::to_string(node.inputs.size()) + " inputs; effect "
            + node.effect->name + " takes " + std::to_string(wanted));
    for (unsigned i = 0; i < wanted; ++i) {
        if (i >= node.inputs.size() || node.inputs[i].empty())
            fail("node " + inQuotes(node.id) + ": input " + std::to_string(i + 1) + " of "
                + std::to_string(wanted) + " is not connected");
        if (sourceIndex(node.inputs[i]) || index.contains(node.inputs[i]))
            continue;
        fail("node " + inQuotes(node.id) + ": input " + std::to_string(i + 1) + " names no node "
            + inQuotes(node.inputs[i]) + nearestNode(index, node.inputs[i]));
    }
}

void checkMask(const GraphNode& node, const NodeIndex& index)
{
    if (!node.mask)
        return;
    const NodeMask& mask = *node.mask;
    const std::string name = "node " + inQuotes(node.id);
    if (mask.picture.empty() == mask.node.empty())
        fail(name + ": a mask needs either a \"picture\" or a \"node\"");
    if (!std::isfinite(mask.feather) || mask.feather < 0)
        fail(name + ": the mask's \"feather\" must be a number from 0 on");
    if (!mask.node.empty() && !sourceIndex(mask.node) && !index.contains(mask.node))
        fail(name + ": its mask names no node " + inQuotes(mask.node) + nearestNode(index, mask.node));
}

void storeHostDefaults(GraphNode& node)
{
    for (const ParamInfo* const info : describeParameters(node.effect->guid)) {
        if (info->hostDefault && !node.sets(*info))
            node.parameters.emplace_back(*info, std::vector<double>{*info->hostDefault});
    }
}

// Sorts nodes depth first over their dependencies; a node that is met again on the way down closes a cycle.
class Sorter {
public:
    explicit Sorter(const std::vector<GraphNode>& nodes)
        : nodes_(nodes),
          index_(indexById(nodes)),
          states_(nodes.size(), State::fresh)
    {
    }

    void visit(std::size_t node)
    {
        if (states_[node] == State::done)
            return;
        if (states_[node] == State::open)
            fail("the connections run in a circle through node " + inQuotes(nodes_[node].id));
        states_[node] = State::open;
        for (const std::string_view before : nodes_[node].dependencies()) {
            if (!sourceIndex(before))
                visit(index_.find(before)->second);
        }
        states_[node] = State::done;
        order_.push_back(node);
    }

    const NodeIndex& index() const { return index_; }
    const std::vector<std::size_t>& order() const { return order_; }

private:
    enum class State { fresh, open, done };

    const std::vector<GraphNode>& nodes_;
    NodeIndex index_;
    std::vector<State> states_;
    std::vector<std::size_t> order_;
};

} // namespace

std::vector<std::string_view> GraphNode::dependencies() const
{
    std::vector<std::string_view> all(inputs.begin(), inputs.end());
    if (mask && !mask->node.empty())
        all.push_back(mask->node);
    return all;
}

bool GraphNode::sets(const ParamInfo& info) const
{
    return std::ranges::any_of(parameters, [&](const ParameterTrack& t) { return &t.info() == &info; });
}

void GraphNode::setCurve(const SoundBand& band, std::span<const float> samples, double rate)
{
    for (ParameterTrack& track : parameters)
        track.setCurve(band, samples, rate);
    if (mix)
        mix->setCurve(band, samples, rate);
}

std::optional<unsigned> sourceIndex(std::string_view input)
{
    if (input == kSource)
        return 0;
    if (!input.starts_with("source-"))
        return std::nullopt;
    const std::string_view digits = input.substr(kSource.size() + 1);
    unsigned number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || number < 2 || number > kMostSources)
        return std::nullopt;
    return number - 1;
}

std::string sourceName(unsigned index)
{
    return index == 0 ? std::string(kSource) : std::string(kSource) + "-" + std::to_string(index + 1);
}

const EffectInfo& effectNamed(std::string_view word)
{
    if (const EffectInfo* const effect = findEffect(word))
        return *effect;
    std::vector<Named> all;
    for (const EffectInfo& effect : listEffects())
        all.push_back({effect.name, effect.title});
    if (const auto index = meant(all, word))
        return *findEffect(all[*index].name);
    fail("no effect " + inQuotes(std::string(word)) + didYouMean(all, word)
        + " (effectengine list shows all)");
}

const ParamInfo& parameterNamed(const EffectInfo& effect, std::string_view word)
{
    const auto& params = describeParameters(effect.guid);
    std::vector<Named> all;
    for (const ParamInfo* const info : params)
        all.push_back({info->name, titleOf(*info)});
    if (const auto index = meant(all, word))
        return *params[*index];
    fail(
        "effect " + effect.name + " has no parameter " + inQuotes(std::string(word)) + didYouMean(all, word));
}

GraphNode& GraphDescription::append(std::string_view effect, const std::string& id)
{
    GraphNode node;
    node.effect = &effectNamed(effect);
    const auto taken = [&](const std::string& name) {
        return sourceIndex(name) || std::ranges::find(nodes, name, &GraphNode::id) != nodes.end();
    };
    node.id = id.empty() ? node.effect->name : id;
    for (int number = 2; id.empty() && taken(node.id); ++number)
        node.id = node.effect->name + "#" + std::to_string(number);
    for (unsigned i = 0; i < node.effect->inputs; ++i)
        node.inputs.push_back(i == 0 && !nodes.empty() ? output : sourceName(i));
    output = node.id;
    nodes.push_back(std::move(node));
    return nodes.back();
}

void GraphDescription::setParameter(std::string_view assignment)
{
    const std::string text(assignment);
    const std::size_t equals = assignment.find('=');
    if (equals == std::string_view::npos)
        fail("a parameter is written name=value, not " + inQuotes(text));
    const auto last = std::ranges::find(nodes, output, &GraphNode::id);
    if (last == nodes.end())
        fail("parameter " + inQuotes(text) + " stands before any effect");
    GraphNode& node = *last;
    const ParamInfo& info = parameterNamed(*node.effect, assignment.substr(0, equals));
    try {
        ParameterTrack track(info, parseValue(info, assignment.substr(equals + 1)));
        std::erase_if(node.parameters, [&](const ParameterTrack& t) { return &t.info() == &info; });
        node.parameters.push_back(std::move(track));
    } catch (const GraphError& error) {
        throw GraphError(error.fault(), "effect " + node.effect->name + ": " + error.what());
    }
}

void GraphDescription::finish()
{
    if (nodes.empty())
        fail("there are no effects");
    for (GraphNode& node : nodes)
        storeHostDefaults(node);
    Sorter sorter(nodes);
    for (const GraphNode& node : nodes) {
        checkConnections(node, sorter.index());
        checkMask(node, sorter.index());
    }
    if (!sorter.index().contains(output))
        fail("the output names no node " + inQuotes(output));
    for (std::size_t i = 0; i < nodes.size(); ++i)
        sorter.visit(i);
    std::vector<GraphNode> sorted;
    for (const std::size_t i : sorter.order())
        sorted.push_back(std::move(nodes[i]));
    nodes = std::move(sorted);
}

unsigned GraphDescription::sources() const
{
    unsigned count = 1;
    for (const GraphNode& node : nodes) {
        for (const std::string_view before : node.dependencies())
            count = std::max(count, sourceIndex(before).value_or(0) + 1);
    }
    return count;
}

std::vector<std::size_t> GraphDescription::used() const
{
    std::vector<std::size_t> found;
    std::vector<std::string_view> wanted{output};
    for (std::size_t i = nodes.size(); i-- > 0;) {
        if (std::ranges::find(wanted, nodes[i].id) == wanted.end())
            continue;
        found.push_back(i);
        std::ranges::copy(nodes[i].dependencies(), std::back_inserter(wanted));
    }
    std::ranges::reverse(found);
    return found;
}

GraphFacts GraphDescription::facts() const
{
    GraphFacts facts;
    std::map<std::string_view, int> reach;
    for (const std::size_t i : used()) {
        const GraphNode& node = nodes[i];
        int frames = 0;
        for (const std::string_view before : node.dependencies())
            frames = std::max(frames, reach[before]);
        if (node.effect->history.frames == KEXSDK::History::kFromStart)
            facts.fromStart.push_back(node.id);
        else
            frames += node.effect->history.frames;
        reach[node.id] = frames;
        facts.needsGpu |= node.effect->needsGpu;
        if (node.effect->random)
            facts.random.push_back(node.id);
    }
    facts.historyFrames = reach[output];
    return facts;
}

std::vector<SoundBand> GraphDescription::bands() const
{
    std::vector<SoundBand> found;
    const auto add = [&](const ParameterTrack& track) {
        for (const SoundBand& band : track.bands()) {
            if (std::ranges::find(found, band) == found.end())
                found.push_back(band);
        }
    };
    for (const std::size_t i : used()) {
        std::ranges::for_each(nodes[i].parameters, add);
        if (nodes[i].mix)
            add(*nodes[i].mix);
    }
    return found;
}

void GraphDescription::setCurve(const SoundBand& band, std::span<const float> samples, double rate)
{
    for (GraphNode& node : nodes)
        node.setCurve(band, samples, rate);
}

std::vector<std::string> GraphDescription::warnings() const
{
    std::vector<std::string> lines;
    for (const GraphNode& node : nodes) {
        const auto tell = [&](const ParameterTrack& track) {
            for (const std::string& line : track.warnings())
                lines.push_back("effect " + node.id + ": " + line);
        };
        std::ranges::for_each(node.parameters, tell);
        if (node.mix)
            tell(*node.mix);
    }
    const std::vector<std::size_t> leading = used();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (std::ranges::find(leading, i) == leading.end())
            lines.push_back("node " + inQuotes(nodes[i].id) + " leads nowhere");
    }
    return lines;
}

} // namespace host
