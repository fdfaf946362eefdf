// Interpolation between keyframes, and where in its period a repetition is.
#include "host/Keyframes.h"

#include "host/GraphError.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace host {

namespace {

[[noreturn]] void fail(const char* what) { throw GraphError(GraphFault::content, what); }

double positionOf(const FrameTime& time, TimeUnit unit)
{
    switch (unit) {
    case TimeUnit::seconds:
        return time.seconds;
    case TimeUnit::frames:
        return time.seconds * time.frameRate;
    case TimeUnit::percent:
        return time.total > 0 ? 100 * time.seconds / time.total : 0;
    }
    return 0;
}

} // namespace

Keyframes::Keyframes(TimeUnit unit, std::vector<Keyframe> keyframes, Repeat repeat)
    : unit_(unit),
      keyframes_(std::move(keyframes)),
      repeat_(repeat)
{
    if (keyframes_.empty())
        fail("there are no keyframes");
    if (!std::ranges::all_of(keyframes_, [](const Keyframe& k) { return std::isfinite(k.time); }))
        fail("the time of a keyframe is not a number");
    const auto unordered = std::ranges::adjacent_find(
        keyframes_, std::greater_equal{}, [](const Keyframe& k) { return k.time; });
    if (unordered != keyframes_.end())
        fail("the times of the keyframes do not ascend");
    if (repeat_.kind != Repeat::Kind::none && keyframes_.size() < 2)
        fail("what repeats has at least two keyframes");
    if (repeat_.times && (*repeat_.times < 1 || repeat_.kind == Repeat::Kind::none))
        fail("\"times\" is a number from 1 and goes with \"repeat\": \"loop\" or \"ping-pong\"");
}

// The position within the first period that shows the same. Frames lie on keyframes as people see it, not to
// the last digit (30 / 25 is not 3 times 0.4): within a billionth of a period they are taken to be there.
double Keyframes::repeated(double position) const
{
    const double first = keyframes_.front().time;
    const double last = keyframes_.back().time;
    const double period = last - first;
    const double near = 1e-9 * period;
    const double passed = position - first;
    if (repeat_.kind == Repeat::Kind::none || !(passed > 0) || !(period > 0) || !std::isfinite(period))
        return position;
    const bool pingPong = repeat_.kind == Repeat::Kind::pingPong;
    if (repeat_.times && passed >= *repeat_.times * period - near)
        return pingPong && *repeat_.times % 2 == 0 ? first : last;
    double within = std::fmod(passed, pingPong ? 2 * period : period);
    if (pingPong)
        within = std::min(within, 2 * period - within);
    else if (period - within <= near)
        within = 0;
    const double found = first + within;
    const auto keyframe =
        std::ranges::find_if(keyframes_, [&](const Keyframe& k) { return std::abs(k.time - found) <= near; });
    return keyframe != keyframes_.end() ? keyframe->time : found;
}

ParameterValue Keyframes::at(const FrameTime& time) const
{
    const double now = repeated(positionOf(time, unit_));
    const auto next = std::ranges::upper_bound(keyframes_, now, {}, [](const Keyframe& k) { return k.time; });
    if (next == keyframes_.begin())
        return keyframes_.front().value;
    const Keyframe& from = *(next - 1);
    if (next == keyframes_.end() || from.interpolation.holds())
        return from.value;
    const double share = from.interpolation((now - from.time) / (next->time - from.time));
    auto numbers = std::get<std::vector<double>>(from.value);
    const auto& targets = std::get<std::vector<double>>(next->value);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = numbers[i] * (1 - share) + targets[i] * share;
    return numbers;
}

} // namespace host
