// The loudness of bands of frequencies in a clip's sound, as curves over time.
#pragma once

#include "effectengine/media/BandMeter.h"

#include <filesystem>

namespace tool::media {

/// Levels from 0 to 1 for each band, BandMeter::kRate a second, the first one at second 0; each is the
/// loudness around its time. The loudest moment of a band has 1, and the level goes with the square root of
/// the amplitude: 12 dB less are about half the level, 60 dB less and silence have 0. A band that is never
/// louder than 60 dB below the loudest moment of the sound has 0 throughout. The curves are empty, with a
/// warning, when the clip has no such track or it cannot be decoded. Throws ToolError when the file cannot be
/// read, and when a stop is asked.
/// @param origin  second 0, as the file counts its times
/// @param track   which of the clip's tracks of sound, from 0
std::vector<std::vector<float>> soundLevels(
    const std::filesystem::path& clip, std::span<const Band> bands, double origin, int track = 0);

} // namespace tool::media
