// Frames into the encoder, files out of it, and the names of numbered files.
#include "effectengine/media/NumberedPictureEncoder.h"

#include "effectengine/ToolError.h"
#include "effectengine/media/encoders.h"

#include <climits>

namespace fs = std::filesystem;

namespace tool::media {

NumberedPictureEncoder::NumberedPictureEncoder(
    const fs::path& name, const FrameShape& shape, const EncoderChoice& choice, Take take)
    : encoder_(openEncoder(encoderOf(name, choice), shape, choice, false)),
      take_(std::move(take)),
      packet_(makePacket())
{
}

void NumberedPictureEncoder::write(const AVFrame& frame, long long number)
{
    numbers_.push_back(number);
    require(avcodec_send_frame(encoder_.get(), &frame), "encoder");
    receive();
}

void NumberedPictureEncoder::finish()
{
    require(avcodec_send_frame(encoder_.get(), nullptr), "encoder");
    receive();
}

void NumberedPictureEncoder::receive()
{
    while (true) {
        const int result = avcodec_receive_packet(encoder_.get(), packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        require(result, "encoder");
        const long long number = numbers_.front();
        numbers_.pop_front();
        take_(number, {packet_->data, std::size_t(packet_->size)});
        av_packet_unref(packet_.get());
    }
}

fs::path numbered(const fs::path& pattern, long long number)
{
    char name[PATH_MAX];
    if (av_get_frame_filename(name, sizeof name, pattern.c_str(), int(number)) < 0)
        throw ToolError(ExitCode::usage,
            pattern.string() + " needs one place for the number of the picture, such as %06d");
    return name;
}

} // namespace tool::media
