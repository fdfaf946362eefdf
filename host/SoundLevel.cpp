// Levels are smoothed once, when their samples come.
#include "host/SoundLevel.h"

#include "host/GraphError.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr NamedBand kBands[] = {
    {"bass", {20, 250}},
    {"mid", {250, 4000}},
    {"treble", {4000, 16000}},
    {"all", {}},
};

// Between two numbers; at both ends exactly they.
double mixed(double from, double to, double share) { return from * (1 - share) + to * share; }

double fallen(double from, double to, double seconds, double release)
{
    return from > to && release > 0 ? to + (from - to) * std::exp(-seconds / release) : to;
}

} // namespace

std::span<const NamedBand> namedBands() { return kBands; }

std::string bandText(const SoundBand& band)
{
    const auto found = std::ranges::find(kBands, band, &NamedBand::band);
    return found != std::end(kBands) ? found->name
                                     : shortNumber(band.low) + "-" + shortNumber(band.high) + " Hz";
}

LevelCurve::LevelCurve(std::span<const float> samples, double rate, double release)
    : rate_(rate),
      release_(release)
{
    if (!(rate > 0) || !std::isfinite(rate))
        throw GraphError(GraphFault::content, "the rate of a curve of levels must be above 0");
    levels_.reserve(samples.size());
    double level = 0;
    for (const float sample : samples) {
        last_ = sample > 0 ? std::min(double(sample), 1.0) : 0;
        level = fallen(level, last_, 1 / rate, release);
        levels_.push_back(level);
    }
}

double LevelCurve::at(double seconds) const
{
    if (levels_.empty())
        return 0;
    const double end = double(levels_.size() - 1);
    const double position = std::max(seconds * rate_, 0.0);
    if (position >= end)
        return fallen(levels_.back(), last_, (position - end) / rate_, release_);
    const auto before = std::size_t(position);
    return mixed(levels_[before], levels_[before + 1], position - double(before));
}

ParameterValue SoundResponse::at(double seconds) const
{
    const double share = level.at(seconds);
    auto numbers = std::get<std::vector<double>>(quiet);
    const auto& targets = std::get<std::vector<double>>(loud);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = mixed(numbers[i], targets[i], share);
    return numbers;
}

} // namespace host
