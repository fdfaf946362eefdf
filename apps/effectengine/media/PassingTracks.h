// Sound and subtitles of a clip that passes once.
#pragma once

#include "effectengine/media/ClipReader.h"
#include "effectengine/media/SideTrack.h"

namespace tool::media {

/// Packets of tracks on their way from the one reader of a pipe to the output. They wait in memory for their
/// time, so memory stays flat where the clip holds sound and pictures side by side.
class PassingTracks {
public:
    /// Has the reader hand on those tracks that can come along: copied, or sound encoded anew where the
    /// container cannot hold it. What cannot is a warning on stderr. Both this and the reader must outlive
    /// the tracks' use.
    PassingTracks(
        ClipReader& reader, const AVOutputFormat& container, const std::filesystem::path& outputName);

    /// The tracks for the output, to be asked for once.
    SideTracks tracks() { return std::move(tracks_); }

    // What the reader's thread tells. Seconds count from the clip's start.

    /// The output begins here: packets that end before are left out, and this time becomes 0.
    /// @param cut  false: packets before the time are kept, as decoders may need them
    void beginAt(double seconds, bool cut);
    /// The output ends here.
    void endAt(double seconds);
    /// Whether all sound up to the end has come.
    bool complete() const;
    /// Nothing more will come.
    void close();

private:
    struct Queue;
    class Track;

    /// False for a stream that cannot come along.
    bool addTrack(const std::shared_ptr<Queue>& queue, const AVOutputFormat& container,
        const std::filesystem::path& outputName);
    void take(AVPacket& packet);

    ClipReader& reader_;
    std::vector<std::shared_ptr<Queue>> queues_;
    SideTracks tracks_;
    int sounds_ = 0;
};

} // namespace tool::media
