// The values of one parameter of one effect, constant or over time.
#pragma once

#include "host/Keyframes.h"
#include "host/SoundLevel.h"
#include "host/values.h"

#include <span>
#include <string>
#include <variant>
#include <vector>

namespace host {

/// What makes a value: it stays, or goes by keyframes, or by the loudness of the clip.
using Movement = std::variant<ParameterValue, Keyframes, SoundResponse>;

/// Values checked against what the effect declares. The constructors throw GraphError: wrong type, wrong
/// number of elements, not finite, files that do not hold from keyframe to keyframe or are to follow the
/// sound.
class ParameterTrack {
public:
    /// A value that stays.
    ParameterTrack(const KEXSDK::ParamInfo& info, ParameterValue value);
    /// Also throws what Keyframes does.
    ParameterTrack(const KEXSDK::ParamInfo& info, TimeUnit unit, std::vector<Keyframe> keyframes);
    ParameterTrack(const KEXSDK::ParamInfo& info, Keyframes keyframes);
    ParameterTrack(const KEXSDK::ParamInfo& info, SoundResponse response);
    /// An array of which each element moves on its own: one movement of single numbers for each.
    ParameterTrack(const KEXSDK::ParamInfo& info, std::vector<Movement> components);

    const KEXSDK::ParamInfo& info() const { return *info_; }
    bool constant() const;

    /// The movement of the whole value; where byComponent(), those of its elements. A single keyframe is a
    /// value that stays.
    const std::vector<Movement>& movements() const { return movements_; }
    bool byComponent() const { return byComponent_; }

    /// The value at a time, as the parameter's type holds it: whole numbers are rounded half up.
    ParameterValue at(const FrameTime& time) const;

    /// The bands of sound whose curves it follows, each once.
    std::vector<SoundBand> bands() const;
    /// Takes a band's curve (LevelCurve) if it follows that band; until then, its level is 0.
    void setCurve(const SoundBand& band, std::span<const float> samples, double rate);

    /// The lowest version of the format of graph files that can say it.
    int since() const;

    /// One line per value outside the advised range; the engine takes such values all the same.
    std::vector<std::string> warnings() const;

private:
    ParameterTrack(const KEXSDK::ParamInfo& info, std::vector<Movement> movements, bool byComponent);

    const KEXSDK::ParamInfo* info_;
    std::vector<Movement> movements_;
    bool byComponent_;
};

} // namespace host
