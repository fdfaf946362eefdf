// The output of a verb as a clip file: pictures, sound and subtitles.
#pragma once

#include "effectengine/PartialFile.h"
#include "effectengine/media/ClipSink.h"
#include "effectengine/media/PaletteFilter.h"
#include "effectengine/media/pipes.h"

#include <map>
#include <optional>

namespace tool::media {

class ClipFile final : public ClipSink {
public:
    /// Throws ToolError.
    ClipFile(const std::filesystem::path& out, const FrameShape& shape, const EncoderChoice& choice,
        SideTracks tracks);

    AVPixelFormat format() const override;
    Colour colour() const override;
    void write(AVFrame& frame, const FramePlace& place) override;
    void finish() override;

private:
    /// A track with the packet that is to be written next.
    struct Track {
        std::unique_ptr<SideTrack> source;
        AVStream* stream = nullptr;
        Packet waiting = makePacket();
        bool ended = false;
    };

    void open(const std::filesystem::path& out);
    void addTrack(std::unique_ptr<SideTrack> source);
    void encode(AVFrame* frame);
    void writeTracksUpTo(std::int64_t time, AVRational unit);
    void writePacket(AVPacket& packet);
    void check(int result);

    std::filesystem::path name_;      ///< of the output, in messages
    std::optional<PartialFile> file_; ///< none for a pipe
    Pipe pipe_;                       ///< or this
    AVRational unit_;                 ///< of the frames that write() gets
    Output output_;
    Codec encoder_;
    AVStream* stream_ = nullptr;
    std::vector<Track> tracks_;
    std::optional<PaletteFilter> palette_;
    bool clearsFrames_ = false; ///< of a transparent GIF
    Packet packet_;
    std::map<std::int64_t, std::int64_t> durations_; ///< by time, of frames within the encoder
    std::int64_t lastTime_ = AV_NOPTS_VALUE;
    std::int64_t lastDuration_ = 0; ///< of the latest frame; 0 unknown
};

} // namespace tool::media
