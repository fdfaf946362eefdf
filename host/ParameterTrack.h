// The values of one parameter of one effect, constant or over time.
#pragma once

#include "facts/Param.h"

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace host {

/// Where a frame stands. Seconds count from the start of the clip, not of the part that is rendered.
struct FrameTime {
    double seconds = 0;
    double frameRate = 25; ///< frames per second
    double total = 5;      ///< duration of the clip in seconds
};

/// What a parameter is set to: its numbers (one, or an array's elements), or a file's path in UTF-8.
using ParameterValue = std::variant<std::vector<double>, std::string>;

/// How a value goes on to the next keyframe. `smooth` starts and ends at rest (3t^2 - 2t^3).
enum class Interpolation { linear, hold, smooth };

/// What a keyframe's time counts: seconds, frames at the clip's rate, or percent of the clip's duration.
enum class TimeUnit { seconds, frames, percent };

struct Keyframe {
    double time = 0;
    ParameterValue value;
    Interpolation interpolation = Interpolation::linear;
};

/// Values checked against what the effect declares.
class ParameterTrack {
public:
    /// A value that stays. Throws GraphError: wrong type, wrong number of elements, not finite.
    ParameterTrack(const KEXSDK::ParamInfo& info, ParameterValue value);
    /// Keyframes in ascending order of time, at least one. Throws GraphError: as above, times that do not
    /// ascend or are not finite, keyframes of a file that do not hold.
    ParameterTrack(const KEXSDK::ParamInfo& info, TimeUnit unit, std::vector<Keyframe> keyframes);

    const KEXSDK::ParamInfo& info() const { return *info_; }
    TimeUnit unit() const { return unit_; }
    const std::vector<Keyframe>& keyframes() const { return keyframes_; }
    bool constant() const { return keyframes_.size() == 1; }

    /// The value at a time; before the first keyframe and after the last one theirs. Whole numbers are
    /// rounded half up.
    ParameterValue at(const FrameTime& time) const;

    /// One line per value outside the advised range; the engine takes such values all the same.
    std::vector<std::string> warnings() const;

private:
    void check() const;

    const KEXSDK::ParamInfo* info_;
    TimeUnit unit_ = TimeUnit::seconds;
    std::vector<Keyframe> keyframes_;
};

/// The values of a mode with their names, from "0 off, 1 left"; empty when any number goes.
std::vector<std::pair<int, std::string>> choicesOf(const KEXSDK::ParamInfo& info);

/// A value as people type it: a number, numbers with commas between, the name of a mode's value, a path.
/// Throws GraphError.
ParameterValue parseValue(const KEXSDK::ParamInfo& info, std::string_view text);

/// "a whole number", "3 numbers", "a file": what a parameter takes, for messages.
std::string expectedValue(const KEXSDK::ParamInfo& info);

} // namespace host
