// Encodes frames as PNG files, several at a time.
#pragma once

#include "effectengine/media/NumberedPictureEncoder.h"
#include "effectengine/media/threeStages.h"
#include "pictures/PngEncoder.h"

#include <future>

namespace tool::media {

/// Each thread has an encoder of its own. write() waits while enough frames are under way, so memory stays
/// flat.
class PngFrameEncoder final : public NumberedPictureEncoder {
public:
    /// Throws std::bad_alloc, std::system_error.
    PngFrameEncoder(const FrameShape& shape, pictures::PngEffort effort, Take take);
    ~PngFrameEncoder() override;

    AVPixelFormat format() const override { return AV_PIX_FMT_RGBA; }
    Colour colour() const override { return {}; }
    void write(const AVFrame& frame, long long number) override;
    void finish() override;

private:
    /// A frame under way.
    struct Picture {
        Frame frame = makeFrame();
        long long number = 0;
        std::promise<std::vector<unsigned char>> promise;
        std::future<std::vector<unsigned char>> file = promise.get_future();
    };

    void encodePictures();
    std::vector<unsigned char> encode(pictures::PngEncoder& encoder, const AVFrame& frame) const;
    void takeFirst();

    pictures::PngEffort effort_;
    AVRational aspect_; ///< of a pixel
    Take take_;
    std::size_t most_;             ///< pictures under way
    std::deque<Picture> underWay_; ///< in the order in which they came
    Handoff<Picture> waiting_;
    std::vector<std::jthread> threads_;
};

} // namespace tool::media
