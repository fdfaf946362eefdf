// Checks of movements against what effects declare, and the value that they make together.
#include "host/ParameterTrack.h"

#include "host/GraphError.h"

#include <algorithm>

using KEXSDK::ParamInfo;
using KEXSDK::ParamType;

namespace host {

namespace {

[[noreturn]] void fail(const std::string& message) { throw GraphError(GraphFault::content, message); }

template <class... Cases> struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases> Overloaded(Cases...) -> Overloaded<Cases...>;

// Every value that stands in a movement.
std::vector<const ParameterValue*> valuesOf(const Movement& movement)
{
    std::vector<const ParameterValue*> values;
    std::visit(Overloaded{[&](const ParameterValue& value) { values.push_back(&value); },
                   [&](const Keyframes& keyframes) {
                       for (const Keyframe& keyframe : keyframes.list())
                           values.push_back(&keyframe.value);
                   },
                   [&](const SoundResponse& response) {
                       values = {&response.quiet, &response.loud};
                   }},
        movement);
    return values;
}

void check(const ParamInfo& info, const Movement& movement)
{
    for (const ParameterValue* const value : valuesOf(movement))
        checkValue(info, *value);
    if (info.type != ParamType::filePath)
        return;
    if (std::holds_alternative<SoundResponse>(movement))
        fail("a file cannot follow the sound");
    if (const auto* const keyframes = std::get_if<Keyframes>(&movement); keyframes
        && std::any_of(keyframes->list().begin(), keyframes->list().end() - 1,
            [](const Keyframe& k) { return !k.interpolation.holds(); }))
        fail("files cannot be mixed; their keyframes hold");
}

ParameterValue valueAt(const Movement& movement, const FrameTime& time)
{
    return std::visit(Overloaded{[](const ParameterValue& value) { return value; },
                          [&](const Keyframes& keyframes) { return keyframes.at(time); },
                          [&](const SoundResponse& response) { return response.at(time.seconds); }},
        movement);
}

} // namespace

ParameterTrack::ParameterTrack(const ParamInfo& info, std::vector<Movement> movements, bool byComponent)
    : info_(&info),
      movements_(std::move(movements)),
      byComponent_(byComponent)
{
    if (byComponent && !isArray(info))
        fail("only a list of numbers has \"components\"; this is " + expectedValue(info));
    if (byComponent && movements_.size() != info.elements)
        fail("there are " + std::to_string(info.elements) + " components, not "
            + std::to_string(movements_.size()));
    for (std::size_t i = 0; i < movements_.size(); ++i) {
        Movement& movement = movements_[i];
        if (byComponent)
            within("component " + std::to_string(i + 1), [&] { check(elementOf(info), movement); });
        else
            check(info, movement);
        if (const auto* const keyframes = std::get_if<Keyframes>(&movement);
            keyframes && keyframes->list().size() == 1) {
            ParameterValue only = keyframes->list().front().value;
            movement = std::move(only);
        }
    }
}

ParameterTrack::ParameterTrack(const ParamInfo& info, ParameterValue value)
    : ParameterTrack(info, std::vector<Movement>{std::move(value)}, false)
{
}

ParameterTrack::ParameterTrack(const ParamInfo& info, TimeUnit unit, std::vector<Keyframe> keyframes)
    : ParameterTrack(info, Keyframes(unit, std::move(keyframes)))
{
}

ParameterTrack::ParameterTrack(const ParamInfo& info, Keyframes keyframes)
    : ParameterTrack(info, std::vector<Movement>{std::move(keyframes)}, false)
{
}

ParameterTrack::ParameterTrack(const ParamInfo& info, SoundResponse response)
    : ParameterTrack(info, std::vector<Movement>{std::move(response)}, false)
{
}

ParameterTrack::ParameterTrack(const ParamInfo& info, std::vector<Movement> components)
    : ParameterTrack(info, std::move(components), true)
{
}

bool ParameterTrack::constant() const
{
    return std::ranges::all_of(
        movements_, [](const Movement& m) { return std::holds_alternative<ParameterValue>(m); });
}

ParameterValue ParameterTrack::at(const FrameTime& time) const
{
    if (info_->type == ParamType::filePath)
        return valueAt(movements_.front(), time);
    std::vector<double> numbers;
    for (const Movement& movement : movements_) {
        const ParameterValue value = valueAt(movement, time);
        for (const double number : std::get<std::vector<double>>(value))
            numbers.push_back(storable(*info_, number));
    }
    return numbers;
}

std::vector<SoundBand> ParameterTrack::bands() const
{
    std::vector<SoundBand> found;
    for (const Movement& movement : movements_) {
        const auto* const response = std::get_if<SoundResponse>(&movement);
        if (response && std::ranges::find(found, response->band) == found.end())
            found.push_back(response->band);
    }
    return found;
}

void ParameterTrack::setCurve(const SoundBand& band, std::span<const float> samples, double rate)
{
    for (Movement& movement : movements_) {
        auto* const response = std::get_if<SoundResponse>(&movement);
        if (response && response->band == band)
            response->level = LevelCurve(samples, rate, response->release);
    }
}

int ParameterTrack::since() const
{
    int version = byComponent_ ? 2 : 1;
    for (const Movement& movement : movements_) {
        if (std::holds_alternative<SoundResponse>(movement))
            version = 2;
        if (const auto* const keyframes = std::get_if<Keyframes>(&movement)) {
            if (keyframes->repeat().kind != Repeat::Kind::none)
                version = 2;
            for (const Keyframe& keyframe : keyframes->list())
                version = std::max(version, keyframe.interpolation.since());
        }
    }
    return version;
}

std::vector<std::string> ParameterTrack::warnings() const
{
    std::vector<std::string> lines;
    if (info_->low >= info_->high)
        return lines;
    const auto outside = [&](double n) { return n < info_->low || n > info_->high; };
    for (const Movement& movement : movements_) {
        for (const ParameterValue* const value : valuesOf(movement)) {
            const auto* const numbers = std::get_if<std::vector<double>>(value);
            if (!numbers)
                continue;
            const auto found = std::ranges::find_if(*numbers, outside);
            if (found != numbers->end())
                lines.push_back(std::string(info_->name) + "=" + shortNumber(*found)
                    + " lies outside the advised " + shortNumber(info_->low) + ".."
                    + shortNumber(info_->high));
        }
    }
    return lines;
}

} // namespace host
