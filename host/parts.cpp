// What the effects' facts say about parts of a clip.
#include "host/parts.h"

#include <algorithm>

namespace host {

namespace {

/// Particles keep what they were born with, and a part would begin with the values of its first frame.
bool movesParticleAttributes(const GraphNode& node)
{
    return std::ranges::any_of(node.parameters, [](const ParameterTrack& track) {
        const char first = track.info().name[0];
        return (first == ':' || first == '.') && !track.constant();
    });
}

} // namespace

std::vector<std::string> startBound(const GraphDescription& graph)
{
    std::vector<std::string> reasons;
    for (const std::size_t index : graph.used()) {
        const GraphNode& node = graph.nodes[index];
        const KEXSDK::EffectInfo& effect = *node.effect;
        const std::string name = "node " + node.id + " (" + effect.name + ")";
        if (effect.history.frames == KEXSDK::History::kFromStart)
            reasons.push_back(name + " depends on every frame since the first one");
        else if (effect.random && effect.history.frames == 0)
            reasons.push_back(name + " draws new random numbers from frame to frame");
        else if (effect.shared)
            reasons.push_back(name + " goes on from the frames that its kind has shown");
        else if (movesParticleAttributes(node))
            reasons.push_back(name + " moves attributes of particles, which keep those they were born with");
    }
    return reasons;
}

long long preRollOf(const GraphDescription& graph)
{
    return startBound(graph).empty() ? graph.facts().historyFrames : kAllFrames;
}

} // namespace host
