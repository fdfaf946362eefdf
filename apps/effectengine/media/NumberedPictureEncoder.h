// Encodes numbered frames as picture files in memory, through the codecs for clips.
#pragma once

#include "effectengine/media/ClipSink.h"

#include <deque>
#include <functional>
#include <span>

namespace tool::media {

/// Encodes several frames at a time; their files come out in the order in which the frames went in.
class NumberedPictureEncoder {
public:
    /// Takes a finished file with the number of its frame.
    using Take = std::function<void(long long number, std::span<const unsigned char> file)>;

    /// The kind of picture is that of the name's extension. Throws ToolError.
    NumberedPictureEncoder(
        const std::filesystem::path& name, const FrameShape& shape, const EncoderChoice& choice, Take take);

    const AVCodecContext& encoder() const { return *encoder_; }

    /// Encodes a frame. It and files of earlier frames may come out now or later; throws what Take throws.
    void write(const AVFrame& frame, long long number);
    /// Brings out the files of all frames that are still within the encoder.
    void finish();

private:
    void receive();

    Codec encoder_;
    Take take_;
    Packet packet_;
    std::deque<long long> numbers_; ///< of the frames within the encoder
};

/// The file of a numbered picture. Throws ToolError when the name holds no place for a number.
std::filesystem::path numbered(const std::filesystem::path& pattern, long long number);

} // namespace tool::media
