// Threads that encode, and the queue that keeps their files in order.
#include "effectengine/media/PngFrameEncoder.h"

#include "effectengine/media/threadShares.h"

#include <chrono>
#include <stdexcept>
#include <system_error>

namespace tool::media {

namespace {

/// Frames that wait for a thread or, encoded, for one before them.
constexpr unsigned kWaiting = 2;

bool isReady(const std::future<std::vector<unsigned char>>& file)
{
    return file.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

} // namespace

PngFrameEncoder::PngFrameEncoder(const FrameShape& shape, pictures::PngEffort effort, Take take)
    : effort_(effort),
      aspect_(shape.sampleAspect),
      take_(std::move(take))
{
    const unsigned threads = pictureEncoders(coreCount(), {shape.width, shape.height});
    most_ = threads + kWaiting;
    threads_.reserve(threads);
    try {
        while (threads_.size() < threads)
            threads_.emplace_back([this] { encodePictures(); });
    } catch (const std::system_error&) {
        if (threads_.empty())
            throw;
        // A system that gives no more threads: those that there are do the work.
    }
}

PngFrameEncoder::~PngFrameEncoder() { waiting_.abandon(); }

void PngFrameEncoder::write(const AVFrame& frame, long long number)
{
    while (underWay_.size() >= most_)
        takeFirst();
    Picture& picture = underWay_.emplace_back();
    picture.number = number;
    require(av_frame_ref(picture.frame.get(), &frame), "frame");
    waiting_.push(&picture);
    while (!underWay_.empty() && isReady(underWay_.front().file))
        takeFirst();
}

void PngFrameEncoder::finish()
{
    while (!underWay_.empty())
        takeFirst();
}

void PngFrameEncoder::takeFirst()
{
    Picture& picture = underWay_.front();
    const std::vector<unsigned char> file = picture.file.get();
    const long long number = picture.number;
    underWay_.pop_front();
    take_(number, file);
}

// The work of a thread. What goes wrong belongs to the picture.
void PngFrameEncoder::encodePictures()
{
    std::optional<pictures::PngEncoder> encoder;
    while (Picture* const picture = waiting_.pop()) {
        try {
            if (!encoder)
                encoder.emplace(effort_);
            picture->promise.set_value(encode(*encoder, *picture->frame));
        } catch (...) {
            picture->promise.set_exception(std::current_exception());
        }
    }
}

std::vector<unsigned char> PngFrameEncoder::encode(pictures::PngEncoder& encoder, const AVFrame& frame) const
{
    const auto file = encoder.encode({.top = frame.data[0],
        .stride = frame.linesize[0],
        .width = unsigned(frame.width),
        .height = unsigned(frame.height),
        .order = pictures::PngPixels::Order::rgba,
        .aspectWidth = unsigned(aspect_.num),
        .aspectHeight = unsigned(aspect_.den)});
    if (file.empty())
        throw std::runtime_error("a PNG file cannot hold the picture");
    return {file.begin(), file.end()};
}

} // namespace tool::media
