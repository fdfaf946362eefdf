// A track without time: an attached file, such as a font, or a cover picture.
#pragma once

#include "effectengine/media/SideTrack.h"

namespace tool::media {

class AttachedTrack final : public SideTrack {
public:
    /// The stream as it is: an attachment, or a cover picture as the one frame of a stream.
    explicit AttachedTrack(const AVStream& stream);

    const AVCodecParameters& parameters() const override { return *parameters_; }
    AVRational timeBase() const override { return {1, 1000}; }
    bool next(AVPacket& packet) override;

    /// Turns a cover picture into an attached file, as Matroska has them.
    void becomeFile();

private:
    Parameters parameters_;
    Packet picture_;
};

/// Whether the stream is a cover picture.
inline bool isCover(const AVStream& stream) { return stream.disposition & AV_DISPOSITION_ATTACHED_PIC; }

} // namespace tool::media
