// What goes along with the pictures of an output: sound and subtitles, attachments, and the clip's notes.
#pragma once

#include "effectengine/media/ClipNotes.h"

namespace tool::media {

/// One stream that accompanies the pictures.
class SideTrack {
public:
    explicit SideTrack(TrackMarks marks = {}) : marks_(std::move(marks)) { }
    virtual ~SideTrack() = default;

    const TrackMarks& marks() const { return marks_; }
    virtual const AVCodecParameters& parameters() const = 0;
    /// The unit of the packets' times.
    virtual AVRational timeBase() const = 0;
    /// The next packet in decoding order; false when there is none. Throws.
    virtual bool next(AVPacket& packet) = 0;
    /// Whether next() may give more after it gave none: true while a pipe has not brought them yet.
    virtual bool mayGoOn() const { return false; }

protected:
    TrackMarks marks_;
};

struct SideTracks {
    std::vector<std::unique_ptr<SideTrack>> tracks;
    ClipNotes notes;
};

/// What goes along from a clip into a container: copied, or encoded anew where the container cannot hold it
/// as it is. What cannot come along is a warning on stderr that names the file.
SideTracks tracksOf(const std::filesystem::path& clip, const AVOutputFormat& container, Span span,
    const std::filesystem::path& outputName);

/// The sound of two clips, one turning into the other from `at` on for `duration` seconds; silence stands in
/// for a clip without sound. Empty when neither has any.
SideTracks crossfadedTracks(const std::filesystem::path& first, const std::filesystem::path& second,
    double at, double duration, const AVOutputFormat& container, const std::filesystem::path& outputName);

} // namespace tool::media
