// A track whose packets are copied from a file.
#pragma once

#include "effectengine/media/SideTrack.h"

namespace tool::media {

/// Opens the file a second time, so that track and pictures never wait for each other.
class CopiedTrack final : public SideTrack {
public:
    CopiedTrack(const std::filesystem::path& clip, int stream, Span span);

    const AVCodecParameters& parameters() const override { return *input_->streams[stream_]->codecpar; }
    AVRational timeBase() const override { return input_->streams[stream_]->time_base; }
    bool next(AVPacket& packet) override;

    const AVStream& stream() const { return *input_->streams[stream_]; }

private:
    Input input_;
    int stream_;
    std::int64_t from_;
    std::int64_t to_;
    bool cut_ = false;
    bool titles_ = false;
};

/// Shortens the packet of a title to a part, in the packet's unit; false when it tells no time. A title that
/// began before time 0 would move all other tracks, since containers have no times before it.
bool cutTitle(AVPacket& packet, AVRational unit, std::int64_t from, std::int64_t to);

} // namespace tool::media
