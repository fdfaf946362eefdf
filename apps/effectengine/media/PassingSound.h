// Sound of a clip that passes once, encoded anew.
#pragma once

#include "effectengine/media/EncodedTrack.h"

namespace tool::media {

class PassingSound final : public SideTrack {
public:
    /// @param packets  of the stream, which may come later than they are asked for
    /// Throws std::runtime_error: the sound cannot be decoded, or the container has no encoder here.
    PassingSound(std::unique_ptr<SideTrack> packets, const AVStream& stream, const AVOutputFormat& container,
        const std::filesystem::path& outputName);

    const AVCodecParameters& parameters() const override { return encoded_.parameters(); }
    AVRational timeBase() const override { return encoded_.timeBase(); }
    bool next(AVPacket& packet) override { return encoded_.next(packet); }
    bool mayGoOn() const override { return !flushed_; }

private:
    AVFilterContext* build(AVFilterGraph& graph);
    bool feed();
    void decode(const AVPacket* packet);

    std::unique_ptr<SideTrack> packets_;
    Codec decoder_;
    Packet packet_;
    Frame frame_;
    AVFilterContext* source_ = nullptr; ///< into the filters
    EncodedTrack encoded_;
    bool flushed_ = false;
    bool warned_ = false;
};

} // namespace tool::media
