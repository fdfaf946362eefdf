// Frames for effects with a history, and reasons why an effect changed nothing.
#include "effectengine/StillGraph.h"

#include "core/Random.h"
#include "effectengine/interruption.h"
#include "engine/effectList.h"
#include "host/exampleValues.h"
#include "model/CSimpleEffect.h"

#include <algorithm>
#include <cmath>

namespace tool {

namespace {

std::string listed(const std::vector<std::string>& names)
{
    constexpr std::size_t kMost = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(kMost, names.size()); ++i)
        text += (i == 0 ? "" : ", ") + names[i];
    return names.size() > kMost ? text + " and others" : text;
}

// The parameters that the effect reads and that neither the user nor a fresh node has set.
std::vector<std::string> unsetParameters(const host::GraphNode& node)
{
    const host::Filter fresh(node.effect->guid, 1, 1);
    const auto stored = [&](const char* name) {
        auto type = KEXSDK::VIParamUnknown;
        return KEXSDK::getParamType(fresh.handle(), name, &type) == EFFECTENGINE_OK
            && type != KEXSDK::VIParamUnknown;
    };
    std::vector<std::string> names;
    for (const KEXSDK::ParamInfo* const info : describeParameters(node.effect->guid)) {
        if (!info->declared && !node.sets(*info) && !stored(info->name))
            names.push_back(info->name);
    }
    return names;
}

} // namespace

StillGraph::StillGraph(const host::GraphDescription& description, std::span<const host::Image> pictures)
    : description_(description),
      pictures_(pictures),
      facts_(description.facts())
{
    for (const host::Image& picture : pictures)
        inputs_.emplace_back(picture.width(), picture.height());
    begin();
}

void StillGraph::begin()
{
    // The generator starts anew, so that a result does not depend on what was made before it. The first nodes
    // of a process also draw its shared tables: every graph goes on from the state that the first one had
    // after that.
    pixels::threadRandom() = pixels::RandomGenerator();
    graph_.emplace(description_, pictures_[0].width(), pictures_[0].height());
    static const pixels::RandomGenerator start = pixels::threadRandom();
    pixels::threadRandom() = start;
    for (unsigned i = 0; i < inputs_.size(); ++i)
        graph_->setSource(inputs_[i], i);
    seen_ = 0;
}

CEffectImage* StillGraph::at(const host::FrameTime& time)
{
    last_ = time;
    const long long frame = std::llround(std::max(0.0, time.seconds) * time.frameRate);
    const long long before =
        facts_.fromStart.empty() ? std::min<long long>(facts_.historyFrames, frame) : frame;
    if (before > 0 && frame + 1 < seen_)
        begin();
    for (long long i = std::max(seen_, frame - before); i < frame; ++i) {
        host::FrameTime earlier = time;
        earlier.seconds = double(i) / time.frameRate;
        show(earlier);
    }
    seen_ = frame + 1;
    return show(time);
}

CEffectImage* StillGraph::show(const host::FrameTime& time, std::vector<std::string>* unchanged)
{
    stopIfAsked();
    for (std::size_t i = 0; i < inputs_.size(); ++i)
        std::ranges::copy(pictures_[i].bytes(), inputs_[i].bytes().begin());
    return graph_->run(time, unchanged);
}

std::vector<std::string> StillGraph::idleEffects()
{
    std::vector<std::string> unchanged;
    show(last_, &unchanged);
    std::vector<std::string> lines;
    for (const std::string& id : unchanged) {
        const host::GraphNode& node = *std::ranges::find(description_.nodes, id, &host::GraphNode::id);
        if (const std::string want = wantOf(node); !want.empty())
            lines.push_back("effect " + node.effect->name + " " + want);
    }
    return lines;
}

// What the effect lacks to change the picture, in words; tells by a trial with example values whether
// parameters would help.
std::string StillGraph::wantOf(const host::GraphNode& node) const
{
    if (node.effect->inputs != 1 || node.sets(KEXSDK::kEnable))
        return "";
    if (const auto names = unsetParameters(node); !names.empty()) {
        host::GraphDescription alone;
        alone.append(node.effect->guid).parameters = node.parameters;
        host::addExamples(alone.nodes[0], pictures_[0].width(), pictures_[0].height());
        alone.finish();
        StillGraph shown(alone, pictures_.first(1));
        if (!std::ranges::equal(host::bytesOf(shown.at(last_)), pictures_[0].bytes()))
            return "does nothing as it was called: it waits for " + listed(names) + " (effectengine describe "
                + node.effect->name + ")";
    }
    if (node.effect->history.frames != 0)
        return "does nothing here: it works with earlier frames, and a picture stands still";
    return "";
}

} // namespace tool
