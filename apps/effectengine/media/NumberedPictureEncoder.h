// Encodes numbered frames as picture files in memory.
#pragma once

#include "effectengine/media/ClipSink.h"

#include <functional>
#include <memory>
#include <span>

namespace tool::media {

/// Encodes several frames at a time; their files come out in the order in which the frames went in.
class NumberedPictureEncoder {
public:
    /// Takes a finished file with the number of its frame, on the thread that calls write() or finish().
    using Take = std::function<void(long long number, std::span<const unsigned char> file)>;

    virtual ~NumberedPictureEncoder() = default;

    /// The format and the colours of the frames that write() takes.
    virtual AVPixelFormat format() const = 0;
    virtual Colour colour() const = 0;

    /// Encodes a frame, whose pixels stay as they are from now on. It and files of earlier frames may come
    /// out now or later; throws what Take throws.
    virtual void write(const AVFrame& frame, long long number) = 0;
    /// Brings out the files of all frames that are still within the encoder.
    virtual void finish() = 0;
};

/// The encoder for the kind of picture that the name's extension tells, unless `choice` names another. Throws
/// ToolError.
std::unique_ptr<NumberedPictureEncoder> openPictureEncoder(const std::filesystem::path& name,
    const FrameShape& shape, const EncoderChoice& choice, NumberedPictureEncoder::Take take);

/// The file of a numbered picture. Throws ToolError when the name holds no place for a number.
std::filesystem::path numbered(const std::filesystem::path& pattern, long long number);

} // namespace tool::media
