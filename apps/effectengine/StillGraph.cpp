// Frames for effects with a history, and reasons why an effect changed nothing.
#include "effectengine/StillGraph.h"

#include "effectengine/effectList.h"
#include "effectengine/exampleLook.h"
#include "effectengine/interruption.h"
#include "facts/nodeParameters.h"

#include <json/reader.h>

#include <algorithm>
#include <cmath>
#include <sstream>

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

// The nodes of the look's graph file.
Json::Value nodesOf(const Look& look)
{
    Json::Value json;
    std::istringstream(look.info().json) >> json;
    return json["nodes"];
}

// The parameters that the effect reads and that neither the user nor a fresh node has set.
std::vector<std::string> unsetParameters(const KEXSDK::EffectInfo& effect, const Json::Value& set)
{
    const host::Filter fresh(effect.guid, 1, 1);
    const auto stored = [&](const char* name) {
        auto type = KEXSDK::VIParamUnknown;
        return KEXSDK::getParamType(fresh.handle(), name, &type) == EFFECTENGINE_OK
            && type != KEXSDK::VIParamUnknown;
    };
    std::vector<std::string> names;
    for (const KEXSDK::ParamInfo* const info : describeParameters(effect)) {
        if (!info->declared && !set.isMember(info->name) && !stored(info->name))
            names.push_back(info->name);
    }
    return names;
}

} // namespace

StillGraph::StillGraph(const Look& look, std::span<const host::Image> pictures)
    : look_(look),
      pictures_(pictures),
      history_(look.info().historyFrames)
{
    begin();
}

void StillGraph::begin()
{
    // The session's seed lets the random numbers of new nodes start anew, so a result does not depend on what
    // was made before it.
    run_.emplace(look_, pictures_[0].width(), pictures_[0].height());
    for (unsigned i = 0; i < pictures_.size(); ++i)
        run_->setSource(pictures_[i], i);
    seen_ = 0;
}

void StillGraph::restart()
{
    run_->restart(look_);
    seen_ = 0;
}

CEffectImage* StillGraph::at(const FrameTime& time)
{
    last_ = time;
    const long long frame = std::llround(std::max(0.0, time.seconds) * time.frameRate);
    const long long before = history_ == EFFECTHOST_FROM_START ? frame : std::min(history_, frame);
    if (before > 0 && frame + 1 < seen_)
        begin();
    for (long long i = std::max(seen_, frame - before); i < frame; ++i) {
        FrameTime earlier = time;
        earlier.seconds = double(i) / time.frameRate;
        show(earlier);
    }
    seen_ = frame + 1;
    return show(time);
}

CEffectImage* StillGraph::show(const FrameTime& time, std::vector<std::string>* unchanged)
{
    stopIfAsked();
    return run_->run(time, unchanged);
}

std::vector<std::string> StillGraph::idleEffects()
{
    std::vector<std::string> unchanged;
    show(last_, &unchanged);
    std::vector<std::string> lines;
    const Json::Value nodes = nodesOf(look_);
    for (const std::string& id : unchanged) {
        const auto node =
            std::ranges::find(nodes, Json::Value(id), [](const Json::Value& n) { return n["id"]; });
        const KEXSDK::EffectInfo& effect = effectNamed((*node)["effect"].asString());
        if (const std::string want = wantOf(effect, (*node)["parameters"]); !want.empty())
            lines.push_back("effect " + effect.name + " " + want);
    }
    return lines;
}

// What the effect lacks to change the picture, in words; tells by a trial with example values whether
// parameters would help.
std::string StillGraph::wantOf(const KEXSDK::EffectInfo& effect, const Json::Value& parameters) const
{
    if (effect.inputs != 1 || parameters.isMember(KEXSDK::kEnable.name))
        return "";
    if (const auto names = unsetParameters(effect, parameters); !names.empty()) {
        const Look alone = exampleLook(effect, pictures_[0].width(), pictures_[0].height(), parameters);
        StillGraph shown(alone, pictures_.first(1));
        if (!std::ranges::equal(host::bytesOf(shown.at(last_)), pictures_[0].bytes()))
            return "does nothing as it was called: it waits for " + listed(names) + " (effectengine describe "
                + effect.name + ")";
    }
    if (effect.history.frames != 0)
        return "does nothing here: it works with earlier frames, and a picture stands still";
    return "";
}

} // namespace tool
