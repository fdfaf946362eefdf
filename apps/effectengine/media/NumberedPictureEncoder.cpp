// The choice of an encoder, the one over the codecs for clips, and the names of numbered files.
#include "effectengine/media/NumberedPictureEncoder.h"

#include "effectengine/ToolError.h"
#include "effectengine/media/PngFrameEncoder.h"
#include "effectengine/media/encoders.h"

#include <climits>
#include <deque>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

/// Encodes through a codec for clips, which brings its own threads.
class CodecPictureEncoder final : public NumberedPictureEncoder {
public:
    CodecPictureEncoder(const AVCodec& codec, const FrameShape& shape, const EncoderChoice& choice, Take take)
        : encoder_(openEncoder(codec, shape, choice, false)),
          take_(std::move(take)),
          packet_(makePacket())
    {
    }

    AVPixelFormat format() const override { return encoder_->pix_fmt; }
    Colour colour() const override { return {.range = encoder_->color_range, .space = encoder_->colorspace}; }

    void write(const AVFrame& frame, long long number) override
    {
        numbers_.push_back(number);
        require(avcodec_send_frame(encoder_.get(), &frame), "encoder");
        receive();
    }

    void finish() override
    {
        require(avcodec_send_frame(encoder_.get(), nullptr), "encoder");
        receive();
    }

private:
    void receive()
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

    Codec encoder_;
    Take take_;
    Packet packet_;
    std::deque<long long> numbers_; ///< of the frames within the encoder
};

} // namespace

std::unique_ptr<NumberedPictureEncoder> openPictureEncoder(const fs::path& name, const FrameShape& shape,
    const EncoderChoice& choice, NumberedPictureEncoder::Take take)
{
    const AVCodec& codec = encoderOf(name, choice);
    // What the options mean only the codec knows.
    if (codec.id == AV_CODEC_ID_PNG && choice.options.empty() && choice.pixelFormat == AV_PIX_FMT_NONE)
        return std::make_unique<PngFrameEncoder>(
            shape, choice.compression.value_or(pictures::PngEffort::fast), std::move(take));
    checkNoCompression(name, choice);
    return std::make_unique<CodecPictureEncoder>(codec, shape, choice, std::move(take));
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
