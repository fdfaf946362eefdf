// What the effects' facts say about parts of a clip.
#include "host/parts.h"

namespace host {

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
    }
    return reasons;
}

long long preRollOf(const GraphDescription& graph)
{
    return startBound(graph).empty() ? graph.facts().historyFrames : kAllFrames;
}

} // namespace host
