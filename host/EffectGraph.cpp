// Evaluation of a graph. Nodes are not connected: each runs once a frame and its image is set as input of its
// users, so a node with two users does not run twice.
#include "host/EffectGraph.h"

#include "host/GraphError.h"
#include "host/opacity.h"
#include "text/Text.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace host {

bool store(Filter& filter, const KEXSDK::ParamInfo& info, const ParameterValue& value)
{
    if (const auto* const path = std::get_if<std::string>(&value))
        return filter.set(info.name, text::wide(*path));
    const auto& numbers = std::get<std::vector<double>>(value);
    switch (info.type) {
    case KEXSDK::ParamType::integer:
        return filter.set(info.name, int(numbers.front()));
    case KEXSDK::ParamType::real:
        return filter.set(info.name, float(numbers.front()));
    case KEXSDK::ParamType::integerArray:
        return filter.set(info.name, std::vector<int>(numbers.begin(), numbers.end()));
    case KEXSDK::ParamType::realArray:
        return filter.set(info.name, std::vector<float>(numbers.begin(), numbers.end()));
    case KEXSDK::ParamType::filePath:
        break;
    }
    return false;
}

namespace {

[[noreturn]] void fail(GraphFault fault, const GraphNode& node, const std::string& what)
{
    throw GraphError(fault, "effect " + node.id + ": " + what);
}

void storeOrFail(
    Filter& filter, const GraphNode& node, const ParameterTrack& track, const ParameterValue& value)
{
    const auto* const path = std::get_if<std::string>(&value);
    if (path && !path->empty() && !std::filesystem::exists(*path))
        fail(GraphFault::missingFile, node,
            "parameter " + std::string(track.info().name) + ": no such file: " + *path);
    if (!store(filter, track.info(), value))
        fail(GraphFault::effectFailed, node,
            "refuses the value of " + std::string(track.info().name) + (path ? ": " + *path : ""));
}

Filter makeFilter(const GraphNode& node, unsigned width, unsigned height)
{
    try {
        return Filter(node.effect->guid, int(width), int(height));
    } catch (const Failure&) {
        fail(GraphFault::effectFailed, node,
            node.effect->needsGpu ? "is not available here; it needs the GPU" : "is not available here");
    }
}

} // namespace

EffectGraph::EffectGraph(const GraphDescription& description, unsigned width, unsigned height)
    : description_(description),
      width_(width),
      height_(height),
      sources_(description.sources())
{
    for (const std::size_t i : description_.used())
        nodes_.push_back(make(description_.nodes[i]));
}

EffectGraph::Running EffectGraph::make(const GraphNode& node) const
{
    Running running{&node, makeFilter(node, width_, height_), {}, {}};
    for (const ParameterTrack& track : node.parameters) {
        if (track.constant())
            storeOrFail(running.filter, node, track, track.keyframes().front().value);
        else
            running.animated.push_back(&track);
    }
    running.last.resize(running.animated.size());
    return running;
}

void EffectGraph::setSource(const Image& image, unsigned index)
{
    if (image.width() != width_ || image.height() != height_)
        throw GraphError(GraphFault::content,
            "a picture of " + std::to_string(image.width()) + " x " + std::to_string(image.height())
                + " for a graph of " + std::to_string(width_) + " x " + std::to_string(height_));
    if (index < sources_.size())
        sources_[index] = image.handle();
}

CEffectImage* EffectGraph::imageFor(const std::string& input) const
{
    if (const auto source = sourceIndex(input))
        return sources_[*source];
    return std::ranges::find(nodes_, input, [](const Running& r) { return r.node->id; })->output;
}

namespace {

double secondsOf(const GraphNode& node, const FrameTime& time)
{
    return node.window ? std::clamp(time.seconds - node.window->start, 0.0, node.window->duration)
                       : time.seconds;
}

} // namespace

// Sets a node's clock, except for times that the description sets itself.
void EffectGraph::setTimes(Running& running, const FrameTime& time)
{
    const GraphNode& node = *running.node;
    const auto set = [&](const char* name, double value) {
        const auto named = [&](const ParameterTrack& t) { return std::string_view(t.info().name) == name; };
        if (std::ranges::none_of(node.parameters, named))
            running.filter.set(name, float(value));
    };
    set(kEffectFrameRate, time.frameRate);
    set(kEffectTotalTime, node.window ? node.window->duration : time.total);
    set(kEffectCurrentTime, secondsOf(node, time));
}

// Leads a new node to its time in steps. A particle scene simulates what passed before its first frame, but
// only so many frames in one go.
void EffectGraph::approach(Running& running, const FrameTime& time)
{
    constexpr double kFrames = 2500; // well below what a scene simulates for one frame
    const double wanted = secondsOf(*running.node, time) * time.frameRate;
    for (double frame = kFrames; frame < wanted; frame += kFrames) {
        FrameTime before = time;
        before.seconds = time.seconds - (wanted - frame) / time.frameRate;
        setTimes(running, before);
        running.filter.run();
    }
    setTimes(running, time);
}

CEffectImage* EffectGraph::run(const FrameTime& time, std::vector<std::string>* unchanged)
{
    for (Running& running : nodes_) {
        setTimes(running, time);
        for (std::size_t i = 0; i < running.animated.size(); ++i) {
            ParameterValue value = running.animated[i]->at(time);
            if (value == running.last[i])
                continue;
            storeOrFail(running.filter, *running.node, *running.animated[i], value);
            running.last[i] = std::move(value);
        }
        for (unsigned i = 0; i < running.node->inputs.size(); ++i) {
            CEffectImage* const image = imageFor(running.node->inputs[i]);
            if (!image)
                fail(GraphFault::content, *running.node,
                    "there is no picture for its input " + running.node->inputs[i]);
            SetInputImage(running.filter.handle(), image, i);
        }
        if (evaluate(running, time, unchanged != nullptr) == Change::none && unchanged)
            unchanged->push_back(running.node->id);
    }
    return nodes_.back().output;
}

// Runs a node. The inputs are looked at before, since effects may write to them.
EffectGraph::Change EffectGraph::evaluate(Running& running, const FrameTime& time, bool compare)
{
    std::vector<CEffectImage*> inputs;
    for (const std::string& input : running.node->inputs)
        inputs.push_back(imageFor(input));
    std::vector<unsigned char> before;
    if (compare && !inputs.empty())
        std::ranges::copy(bytesOf(inputs[0]), std::back_inserter(before));
    const bool opaque = running.node->effect->alpha == KEXSDK::Alpha::loose && areOpaque(inputs);
    try {
        if (!running.output && running.node->effect->needsGpu)
            approach(running, time);
        running.output = running.filter.run();
    } catch (const Failure& failure) {
        fail(GraphFault::effectFailed, *running.node, failure.what());
    }
    if (opaque)
        makeOpaque(running.output);
    return compare && std::ranges::equal(before, bytesOf(running.output)) ? Change::none : Change::some;
}

} // namespace host
