// What a clip says about itself and its pictures beside the pictures: its title, chapters, timecode and
// marks.
#pragma once

#include "effectengine/media/ClipSource.h"
#include "effectengine/media/ffmpeg.h"

#include <filesystem>
#include <limits>
#include <optional>
#include <vector>

namespace tool::media {

/// The part of a clip that is wanted, in seconds from the file's start; `from` becomes 0.
struct Span {
    double from = 0;
    double to = std::numeric_limits<double>::infinity();
};

/// Names and values, such as a title and a language.
using Notes = std::vector<std::pair<std::string, std::string>>;

/// The notes of a file, a track or a chapter that hold for a copy, too: not those that describe the file's
/// own format, its encoder or its size.
Notes notesOf(const AVDictionary* entries);

/// What players show about a track, and by which they choose one.
struct TrackMarks {
    Notes notes;
    int disposition = 0; ///< AV_DISPOSITION_...
};

TrackMarks marksOf(const AVStream& stream);

/// Gives a track of an output the marks, in the container's way.
void mark(AVStream& stream, const TrackMarks& marks, const AVOutputFormat& container);

/// Everything about a clip that goes along with its pictures, within a span.
struct ClipNotes {
    struct Chapter {
        double from, to; ///< seconds
        Notes notes;
    };
    /// A description of the pictures in the library's form: of a mastering display, of two eyes' pictures.
    struct Description {
        AVPacketSideDataType type;
        std::vector<unsigned char> bytes;
    };

    Notes file;
    TrackMarks pictures;
    std::vector<Chapter> chapters;
    std::vector<Description> descriptions;
    std::optional<int> plays; ///< of an animated picture; 0 for ever

    /// Enters all into an output whose header is not written yet.
    /// @param highRange  the pictures are still coded in high dynamic range
    void apply(AVFormatContext& output, AVStream& stream, bool highRange) const;
};

/// The notes of a clip. What the container has no place for is a warning on stderr that names the file.
/// @param input  the open clip
/// @param stream  the number of its pictures
ClipNotes clipNotesOf(const std::filesystem::path& clip, const AVFormatContext& input, int stream,
    const AVOutputFormat& container, Span span, const std::filesystem::path& outputName);

/// Descriptions of a clip's pictures; those of high dynamic range also where only the coded pictures tell,
/// unless the clip passes once.
std::vector<ClipNotes::Description> descriptionsOf(const ClipSource& clip, const AVStream& pictures);

/// Whether the container is MP4 or QuickTime or one of their kin.
bool isQuickTimeKind(const AVOutputFormat& container);

} // namespace tool::media
