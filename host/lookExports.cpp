// Exported functions that make looks and describe them.
#include "host/lookExports.h"

#include "host/factsExports.h"
#include "host/library.h"
#include "host/parts.h"

#include <filesystem>
#include <memory>

namespace {

using host::GraphDescription;

GraphDescription read(EffectHostLookSource source, const char* text, const char* directory)
{
    GraphDescription graph;
    switch (source) {
    case EFFECTHOST_LOOK_EMPTY:
        return graph;
    case EFFECTHOST_LOOK_EFFECT:
        graph.append(text);
        return graph;
    case EFFECTHOST_LOOK_FILE:
        return host::loadGraph(text);
    case EFFECTHOST_LOOK_JSON:
        return host::parseGraph(text, "the look", directory ? directory : std::filesystem::current_path());
    }
    host::require(false, "EffectHostCreateLook got an unknown source");
    return graph;
}

void keepLines(EffectHostLook& look, const std::vector<std::string>& lines, std::vector<const char*>& kept)
{
    kept.clear();
    for (const std::string& line : lines)
        kept.push_back(look.texts.emplace_back(line).c_str());
}

void describe(EffectHostLook& look)
{
    if (look.described)
        return;
    const GraphDescription& graph = look.finished();
    const host::GraphFacts facts = graph.facts();
    look.texts.clear();
    look.nodes.clear();
    for (const host::GraphNode& node : graph.nodes)
        look.nodes.push_back({node.id.c_str(), host::factsOf(*node.effect)});
    look.bands.clear();
    for (const host::SoundBand& band : graph.bands())
        look.bands.push_back({look.texts.emplace_back(host::bandText(band)).c_str(), band.low, band.high});
    keepLines(look, graph.warnings(), look.warnings);
    keepLines(look, host::startBound(graph), look.fromStart);
    look.info = {.title = graph.title.c_str(),
        .output = graph.output.c_str(),
        .inputs = graph.sources(),
        .historyFrames = facts.fromStart.empty() ? facts.historyFrames : EFFECTHOST_FROM_START,
        .preRoll = look.fromStart.empty() ? facts.historyFrames : EFFECTHOST_FROM_START,
        .random = !facts.random.empty(),
        .needsGpu = facts.needsGpu,
        .nodeCount = look.nodes.size(),
        .nodes = look.nodes.data(),
        .bandCount = look.bands.size(),
        .bands = look.bands.data(),
        .warningCount = look.warnings.size(),
        .warnings = look.warnings.data(),
        .fromStartCount = look.fromStart.size(),
        .fromStart = look.fromStart.data(),
        .json = look.texts.emplace_back(host::graphText(graph)).c_str()};
    look.described = true;
}

/// Makes a change, after which the look is to be checked and described anew.
template <class Change> void change(EffectHostLook& look, Change apply)
{
    const std::lock_guard lock(look.mutex);
    look.complete = look.described = false;
    apply(look.graph);
}

} // namespace

const host::GraphDescription& EffectHostLook::finished()
{
    if (!complete)
        graph.finish();
    complete = true;
    return graph;
}

EffectHostResult EffectHostCreateLook(
    EffectHostLookSource source, const char* text, const char* directory, EffectHostLook** look)
{
    return host::guarded([&] {
        host::require(
            look && (text || source == EFFECTHOST_LOOK_EMPTY), "EffectHostCreateLook got a null pointer");
        host::requireOpen();
        auto made = std::make_unique<EffectHostLook>();
        made->graph = read(source, text, directory);
        *look = made.release();
    });
}

void EffectHostReleaseLook(EffectHostLook* look) { delete look; }

EffectHostResult EffectHostAppendEffect(EffectHostLook* look, const char* effect)
{
    return host::guarded([&] {
        host::require(look && effect, "EffectHostAppendEffect got a null pointer");
        change(*look, [&](GraphDescription& graph) { graph.append(effect); });
    });
}

EffectHostResult EffectHostAssign(EffectHostLook* look, const char* assignment)
{
    return host::guarded([&] {
        host::require(look && assignment, "EffectHostAssign got a null pointer");
        change(*look, [&](GraphDescription& graph) { graph.setParameter(assignment); });
    });
}

EffectHostResult EffectHostGetLookInfo(EffectHostLook* look, const EffectHostLookInfo** info)
{
    return host::guarded([&] {
        host::require(look && info, "EffectHostGetLookInfo got a null pointer");
        const std::lock_guard lock(look->mutex);
        describe(*look);
        *info = &look->info;
    });
}
