// The pass over a clip's packets that finds times and keys.
#include "effectengine/media/FrameTable.h"

#include "effectengine/media/ClipReader.h"
#include "effectengine/media/ParameterSets.h"
#include "effectengine/media/openClip.h"

#include <algorithm>
#include <array>

namespace tool::media {

namespace {

// Whether the file's format has an index that leads to a picture which needs none before it.
bool seeksExactly(const AVFormatContext& input)
{
    constexpr std::array kNames{std::string_view("mov,mp4,m4a,3gp,3g2,mj2"),
        std::string_view("matroska,webm"), std::string_view("image2")};
    return std::ranges::find(kNames, std::string_view(input.iformat->name)) != kNames.end();
}

// Whether the packet holds a picture that is shown: some are only references for others, and an empty packet
// repeats the picture before it.
bool isShown(const AVPacket& packet, AVCodecID codec)
{
    constexpr std::uint8_t kVp8Shown = 0x10;
    return packet.size > 0 && !(packet.flags & AV_PKT_FLAG_DISCARD)
        && (codec != AV_CODEC_ID_VP8 || packet.data[0] & kVp8Shown);
}

// Removes the first frames of a clip that was cut out of another one, as far as they need what was cut off.
void dropWhatNeedsEarlierFrames(FrameTable& table, const ClipSource& source)
{
    ClipReader reader(source);
    const Frame frame = makeFrame();
    if (reader.next(*frame))
        table.times.erase(table.times.begin(), std::ranges::lower_bound(table.times, frame->pts));
}

} // namespace

long long FrameTable::at(std::int64_t time) const
{
    return std::ranges::upper_bound(times, time) - times.begin() - 1;
}

FrameTable readFrameTable(const ClipSource& source)
{
    const Input input = openClip(source);
    const int stream = pictureStreamOf(*input, source.name());
    readOnly(*input, stream);
    const AVCodecParameters& codec = *input->streams[stream]->codecpar;
    const bool seeks = seeksExactly(*input);
    ParameterSets sets(codec);
    FrameTable table;
    std::int64_t last = AV_NOPTS_VALUE;
    const Packet packet = makePacket();
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        const bool startsAlike = packet->stream_index == stream && seeks && sets.take(*packet);
        if (packet->stream_index == stream && isShown(*packet, codec.codec_id)) {
            if (packet->pts >= last) {
                last = packet->pts;
                table.lastDuration = packet->duration;
            }
            table.times.push_back(packet->pts);
            // Indices count decoding times, which come first; an earlier place than needed does no harm.
            if (startsAlike && packet->flags & AV_PKT_FLAG_KEY && packet->dts != AV_NOPTS_VALUE
                && packet->pts != AV_NOPTS_VALUE)
                table.keys.push_back({packet->dts, packet->pts});
        }
        av_packet_unref(packet.get());
    }
    if (table.times.empty())
        return table;
    const std::int64_t first = table.times.front();
    std::ranges::sort(table.times);
    if (seeks && table.times.back() != AV_NOPTS_VALUE) // packets without a time lead to nothing that is shown
        std::erase(table.times, AV_NOPTS_VALUE);
    std::ranges::sort(table.keys, {}, &FrameTable::Key::shown);
    table.numbers = seeks && table.times.front() != AV_NOPTS_VALUE
        && std::ranges::adjacent_find(table.times) == table.times.end();
    if (table.numbers && table.times.front() != first)
        dropWhatNeedsEarlierFrames(table, source);
    return table;
}

} // namespace tool::media
