// The loudness of a clip's sound, band by band, and values that follow it.
#pragma once

#include "host/values.h"

#include <limits>
#include <span>
#include <string>
#include <vector>

namespace host {

/// Frequencies in hertz.
struct SoundBand {
    double low = 0;
    double high = std::numeric_limits<double>::infinity();

    bool operator==(const SoundBand&) const = default;
};

struct NamedBand {
    const char* name;
    SoundBand band;
};

/// "bass", "mid", "treble", and "all" for the whole sound, which has no upper end.
std::span<const NamedBand> namedBands();

/// A band's name, or "LOW-HIGH Hz".
std::string bandText(const SoundBand& band);

/// Levels over time.
class LevelCurve {
public:
    /// Level 0 at all times.
    LevelCurve() = default;

    /// Samples in 0..1, `rate` a second, the first one at second 0; what lies outside counts as the nearest
    /// end, what is no number as 0. The level rises at once and falls with a time constant of `release`
    /// seconds: after each one its distance from the samples is 1/e of what it was. Throws GraphError: a rate
    /// that is not above 0 and finite.
    LevelCurve(std::span<const float> samples, double rate, double release);

    /// Linear between the samples; before the first one as there. After the last one the sound stays as it
    /// was there, and the level falls on towards it.
    double at(double seconds) const;

private:
    std::vector<double> levels_;
    double last_ = 0; ///< the last sample
    double rate_ = 1;
    double release_ = 0;
};

/// A value that lies between two others as the level of a band says.
struct SoundResponse {
    SoundBand band;
    ParameterValue quiet; ///< at level 0
    ParameterValue loud;  ///< at level 1
    double release = 0;   ///< seconds, see LevelCurve
    LevelCurve level{};   ///< of the band, once somebody has it

    /// Numbers are not rounded.
    ParameterValue at(double seconds) const;
};

} // namespace host
