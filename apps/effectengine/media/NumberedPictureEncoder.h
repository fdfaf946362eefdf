// Frames as picture files in memory.
#pragma once

#include "effectengine/media/ClipSink.h"

#include <deque>
#include <functional>
#include <span>

namespace media {

/// Encodes several pictures at a time; they come out in the order in which they went in.
class NumberedPictureEncoder {
public:
    /// Takes the finished picture with the number that it was given.
    using Take = std::function<void(long long number, std::span<const unsigned char> file)>;

    /// The kind of picture is that of the name's extension. Throws ToolError.
    NumberedPictureEncoder(
        const std::filesystem::path& name, const FrameShape& shape, const EncoderChoice& choice, Take take);

    const AVCodecContext& encoder() const { return *encoder_; }

    /// Throws what take() throws.
    void write(const AVFrame& frame, long long number);
    /// The last pictures come out.
    void finish();

private:
    void receive();

    Codec encoder_;
    Take take_;
    Packet packet_;
    std::deque<long long> numbers_; ///< of the pictures within the encoder
};

/// The file of a numbered picture. Throws ToolError when the name holds no place for a number.
std::filesystem::path numbered(const std::filesystem::path& pattern, long long number);

/// Writes a file beside and renames it. Throws ToolError.
void writeWhole(const std::filesystem::path& file, std::span<const unsigned char> bytes);

} // namespace media
