// Subtitles of text in the form of another container.
#pragma once

#include "effectengine/media/CopiedTrack.h"

namespace tool::media {

class ConvertedSubtitles final : public SideTrack {
public:
    /// Throws: no decoder, or the encoder refuses them.
    /// @param source    the subtitles as they are stored
    /// @param clip      their file, for messages
    /// @param encoder   for subtitles of text
    /// @param pictures  the clip's pictures, over which the text is laid
    ConvertedSubtitles(std::unique_ptr<CopiedTrack> source, const std::filesystem::path& clip,
        const AVCodec& encoder, const AVCodecParameters& pictures);

    const AVCodecParameters& parameters() const override { return *parameters_; }
    AVRational timeBase() const override { return {1, 1000}; }
    bool next(AVPacket& packet) override;

private:
    std::unique_ptr<CopiedTrack> source_;
    Codec decoder_;
    Codec encoder_;
    Parameters parameters_;
    Packet stored_ = makePacket();
};

/// The encoder for text of a container that cannot hold the stream's subtitles as they are; null when they
/// are pictures, or the container takes no text.
const AVCodec* textEncoderFor(const AVStream& subtitles, const AVOutputFormat& container);

} // namespace tool::media
