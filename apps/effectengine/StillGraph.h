// Graphs of effects over single pictures, which effects with a history see as a clip that stands still.
#pragma once

#include "effectengine/Look.h"
#include "facts/EffectInfo.h"

#include <json/value.h>

#include <optional>
#include <span>

namespace tool {

/// A graph over pictures, at one moment or at several. Effects with a history have seen the pictures before,
/// at the frame rate and for as many frames as they depend on.
class StillGraph {
public:
    /// Needs a running engine. The pictures are the look's sources in their order, all of one size; they
    /// and the look must outlive this object. Throws LookError.
    StillGraph(const Look& look, std::span<const host::Image> pictures);

    /// The picture at a moment; it belongs to this object and holds until the next call. Moments in ascending
    /// order go on from each other. Throws LookError, and when a stop is asked.
    CEffectImage* at(const FrameTime& time);

    /// A line for each effect that left its input in the last picture as it was because it lacked something,
    /// and what it lacked. Effects that were switched off have none. Throws as above.
    std::vector<std::string> idleEffects();

    /// Begins anew, after the caller has put others into the pictures: what follows is what a new object
    /// would give.
    void restart();

private:
    void begin();
    CEffectImage* show(const FrameTime& time, std::vector<std::string>* unchanged = nullptr);
    std::string wantOf(const KEXSDK::EffectInfo& effect, const Json::Value& parameters) const;

    const Look& look_;
    std::span<const host::Image> pictures_;
    long long history_; ///< frames that the output depends on, or EFFECTHOST_FROM_START
    std::optional<LookRun> run_;
    long long seen_ = 0; ///< frames that effects with a history have seen
    FrameTime last_;
};

} // namespace tool
