// Keyframes: a value over time, once or again and again.
#pragma once

#include "host/Easing.h"
#include "host/values.h"

#include <optional>
#include <vector>

namespace host {

/// Where a frame stands. Seconds count from the start of the clip, not of the part that is rendered.
struct FrameTime {
    double seconds = 0;
    double frameRate = 25; ///< frames per second
    double total = 5;      ///< duration of the clip in seconds
};

/// What a keyframe's time counts: seconds, frames at the clip's rate, or percent of the clip's duration.
enum class TimeUnit { seconds, frames, percent };

struct Keyframe {
    double time = 0;
    ParameterValue value;
    Easing interpolation{}; ///< on the way to the next keyframe
};

/// What comes after the last keyframe. A period runs from the first keyframe to the last.
struct Repeat {
    /// loop: each period begins with the first keyframe. pingPong: every second period runs backwards.
    enum class Kind { none, loop, pingPong };
    Kind kind = Kind::none;
    std::optional<int>
        times; ///< how many periods, at least 1, after which the last value stays; endless without
};

class Keyframes {
public:
    /// Keyframes in ascending order of time, at least one. Throws GraphError: times that do not ascend or are
    /// not finite, a repetition of fewer than two keyframes.
    Keyframes(TimeUnit unit, std::vector<Keyframe> keyframes, Repeat repeat = {});

    TimeUnit unit() const { return unit_; }
    const std::vector<Keyframe>& list() const { return keyframes_; }
    const Repeat& repeat() const { return repeat_; }

    /// The value at a time. Before the first keyframe its value holds; after the last one that one's, unless
    /// they repeat: the end of a period is the start of the next one. Numbers are not rounded.
    ParameterValue at(const FrameTime& time) const;

private:
    double repeated(double position) const;

    TimeUnit unit_;
    std::vector<Keyframe> keyframes_;
    Repeat repeat_;
};

} // namespace host
