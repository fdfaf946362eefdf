// Sound and subtitles of an output: packets copied from a file, or sound encoded anew.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <filesystem>
#include <limits>
#include <vector>

namespace tool::media {

/// The part of a clip that is wanted, in seconds from the file's start; `from` becomes 0.
struct Span {
    double from = 0;
    double to = std::numeric_limits<double>::infinity();
};

/// One stream that accompanies the pictures.
class SideTrack {
public:
    virtual ~SideTrack() = default;

    virtual const AVCodecParameters& parameters() const = 0;
    /// The unit of the packets' times.
    virtual AVRational timeBase() const = 0;
    /// What a player shows about it (its language), or null.
    virtual const AVDictionary* metadata() const { return nullptr; }
    /// The next packet in decoding order; false at the end. Throws.
    virtual bool next(AVPacket& packet) = 0;
};

using SideTracks = std::vector<std::unique_ptr<SideTrack>>;

/// The clip's sound and subtitles for a container: copied, or sound encoded anew where the container cannot
/// hold it. What cannot come along is a warning on stderr that names the file.
SideTracks tracksOf(const std::filesystem::path& clip, const AVOutputFormat& container, Span span,
    const std::filesystem::path& outputName);

/// The sound of two clips, one turning into the other from `at` on for `duration` seconds; silence stands in
/// for a clip without sound. Empty when neither has any.
SideTracks crossfadedTracks(const std::filesystem::path& first, const std::filesystem::path& second,
    double at, double duration, const AVOutputFormat& container, const std::filesystem::path& outputName);

} // namespace tool::media
