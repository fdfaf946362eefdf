// Queues between the thread that reads and the one that writes.
#include "effectengine/media/PassingTracks.h"

#include "effectengine/media/CopiedTrack.h"
#include "effectengine/media/PassingSound.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/trackPlaces.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace tool::media {

namespace {

std::int64_t timeOf(const AVPacket& packet) { return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts; }

} // namespace

/// The packets of one stream.
struct PassingTracks::Queue {
    Queue(const AVStream& source, std::int64_t startOfClip) : stream(source), start(startOfClip) { }

    std::int64_t ticksAt(double seconds) const
    {
        return start + std::llround(seconds / av_q2d(stream.time_base));
    }

    const AVStream& stream;
    const std::int64_t start; ///< of the clip, in the stream's time base

    std::mutex mutex; ///< for what follows
    std::deque<Packet> packets;
    std::optional<std::int64_t> from; ///< empty until the output begins
    std::int64_t to = INT64_MAX;
    bool cut = false;
    bool complete = false; ///< a packet at the end, or after it, has come
    bool closed = false;
};

/// The output's end of a queue.
class PassingTracks::Track final : public SideTrack {
public:
    explicit Track(std::shared_ptr<Queue> queue)
        : SideTrack(marksOf(queue->stream)),
          queue_(std::move(queue)),
          titles_(queue_->stream.codecpar->codec_type == AVMEDIA_TYPE_SUBTITLE)
    {
    }

    const AVCodecParameters& parameters() const override { return *queue_->stream.codecpar; }
    AVRational timeBase() const override { return queue_->stream.time_base; }

    bool next(AVPacket& packet) override
    {
        const std::lock_guard lock(queue_->mutex);
        while (queue_->from && !queue_->packets.empty()) {
            const Packet first = std::move(queue_->packets.front());
            queue_->packets.pop_front();
            const std::int64_t time = timeOf(*first);
            if (time >= queue_->to || (queue_->cut && time + first->duration <= *queue_->from))
                continue;
            av_packet_unref(&packet);
            av_packet_move_ref(&packet, first.get());
            // Where the part ends may not be known yet, so titles keep their ends.
            if (titles_ && !cutTitle(packet, timeBase(), *queue_->from, INT64_MAX))
                continue;
            for (std::int64_t* const t : {&packet.pts, &packet.dts})
                if (*t != AV_NOPTS_VALUE)
                    *t -= *queue_->from;
            return true;
        }
        return false;
    }

    bool mayGoOn() const override
    {
        const std::lock_guard lock(queue_->mutex);
        return !queue_->closed;
    }

private:
    std::shared_ptr<Queue> queue_;
    bool titles_;
};

PassingTracks::PassingTracks(
    ClipReader& reader, const AVOutputFormat& container, const std::filesystem::path& outputName)
    : reader_(reader)
{
    const AVFormatContext& input = reader.container();
    std::vector<int> streams;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream& stream = *input.streams[i];
        const AVMediaType type = stream.codecpar->codec_type;
        if (type != AVMEDIA_TYPE_AUDIO && type != AVMEDIA_TYPE_SUBTITLE)
            continue;
        const std::int64_t start = input.start_time == AV_NOPTS_VALUE
            ? 0
            : av_rescale_q(input.start_time, AV_TIME_BASE_Q, stream.time_base);
        const auto queue = std::make_shared<Queue>(stream, start);
        if (!addTrack(queue, container, outputName))
            continue;
        queues_.push_back(queue);
        streams.push_back(int(i));
    }
    if (!streams.empty())
        reader.handOnOthers(streams, [this](AVPacket& packet) { take(packet); });
}

bool PassingTracks::addTrack(const std::shared_ptr<Queue>& queue, const AVOutputFormat& container,
    const std::filesystem::path& outputName)
{
    const AVCodecParameters& stored = *queue->stream.codecpar;
    const bool sound = stored.codec_type == AVMEDIA_TYPE_AUDIO;
    const std::string name = (sound ? "sound (" : "subtitles (") + nameOf(queue->stream) + ")";
    auto packets = std::make_unique<Track>(queue);
    const bool noPlace = sound ? sounds_ == soundsIn(container) : !holds(container, stored.codec_id);
    if (noPlace) {
        warn(reader_.info().file,
            name + (sound ? " has" : " have") + " no place in " + outputName.filename().string());
        return false;
    }
    sounds_ += sound;
    if (holds(container, stored.codec_id)) {
        tracks_.tracks.push_back(std::move(packets));
        return true;
    }
    try {
        tracks_.tracks.push_back(
            std::make_unique<PassingSound>(std::move(packets), queue->stream, container, outputName));
    } catch (const std::runtime_error& error) {
        warn(reader_.info().file, name + " is left out: " + error.what());
        return false;
    }
    warn(reader_.info().file,
        name + " is encoded anew as " + avcodec_get_name(tracks_.tracks.back()->parameters().codec_id));
    return true;
}

void PassingTracks::take(AVPacket& packet)
{
    for (const auto& queue : queues_) {
        if (queue->stream.index != packet.stream_index)
            continue;
        const std::lock_guard lock(queue->mutex);
        const std::int64_t time = timeOf(packet);
        if (time == AV_NOPTS_VALUE)
            return;
        if (time >= queue->to) {
            queue->complete = true;
            return;
        }
        // What ends before a frame that is not wanted can belong to no later one.
        while (!queue->from && reader_.index() >= 0 && !queue->packets.empty()) {
            const AVPacket& first = *queue->packets.front();
            if (timeOf(first) + first.duration > queue->ticksAt(reader_.secondsSinceStart()))
                break;
            queue->packets.pop_front();
        }
        Packet copy = makePacket();
        require(av_packet_make_refcounted(&packet), "packet");
        av_packet_move_ref(copy.get(), &packet);
        queue->packets.push_back(std::move(copy));
        return;
    }
}

void PassingTracks::beginAt(double seconds, bool cut)
{
    for (const auto& queue : queues_) {
        const std::lock_guard lock(queue->mutex);
        queue->from = queue->ticksAt(seconds);
        queue->cut = cut;
    }
}

void PassingTracks::endAt(double seconds)
{
    for (const auto& queue : queues_) {
        const std::lock_guard lock(queue->mutex);
        queue->to = queue->ticksAt(seconds);
        queue->complete = queue->complete || std::ranges::any_of(queue->packets, [&](const Packet& packet) {
            return timeOf(*packet) >= queue->to;
        });
    }
}

bool PassingTracks::complete() const
{
    return std::ranges::all_of(queues_, [](const auto& queue) {
        const std::lock_guard lock(queue->mutex);
        return queue->complete || queue->stream.codecpar->codec_type != AVMEDIA_TYPE_AUDIO;
    });
}

void PassingTracks::close()
{
    for (const auto& queue : queues_) {
        const std::lock_guard lock(queue->mutex);
        queue->closed = true;
    }
}

} // namespace tool::media
