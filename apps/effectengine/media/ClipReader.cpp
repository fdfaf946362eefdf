// Demultiplexing and decoding.
#include "effectengine/media/ClipReader.h"

#include "effectengine/ToolError.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace fs = std::filesystem;

namespace media {

namespace {

// Numbered pictures rarely begin at 0: parts of a clip carry the clip's numbers.
constexpr const char* kFirstPictureUpTo = "100000";

bool namesPictures(const fs::path& file)
{
    return av_filename_number_test(file.c_str()) && !fs::exists(file);
}

void checkReadable(const fs::path& file)
{
    if (namesPictures(file))
        return;
    if (!fs::exists(file))
        throw ToolError(ExitCode::missingInput, "no such file: " + file.string());
    if (fs::is_directory(file))
        throw ToolError(ExitCode::unreadable, "is a directory, not a clip: " + file.string());
    if (access(file.c_str(), R_OK) != 0)
        throw ToolError(ExitCode::unreadable, "no permission to read " + file.string());
}

int videoStreamOf(const AVFormatContext& input, const fs::path& file)
{
    const int stream =
        av_find_best_stream(const_cast<AVFormatContext*>(&input), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (stream < 0 || input.streams[stream]->disposition & AV_DISPOSITION_ATTACHED_PIC)
        throw ToolError(ExitCode::unreadable, "no pictures in " + file.string());
    return stream;
}

void keepOnly(AVFormatContext& input, int stream)
{
    for (unsigned i = 0; i < input.nb_streams; ++i)
        input.streams[i]->discard = int(i) == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

Orientation orientationOf(const AVStream& stream)
{
    const auto* const m = reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
    if (!m)
        return {};
    // shown x = m[0] x + m[3] y, shown y = m[1] x + m[4] y; turns between the quarters go to the nearest one.
    if (std::abs(m[0]) >= std::abs(m[1]))
        return {false, m[0] < 0, m[4] < 0};
    return {true, m[3] < 0, m[1] < 0};
}

// Formats whose index leads to a picture that needs none before it.
bool seeksExactly(const AVFormatContext& input)
{
    constexpr std::array kNames{std::string_view("mov,mp4,m4a,3gp,3g2,mj2"),
        std::string_view("matroska,webm"), std::string_view("image2")};
    return std::ranges::find(kNames, std::string_view(input.iformat->name)) != kNames.end();
}

} // namespace

bool ClipInfo::hasAlpha() const
{
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    return descriptor && (descriptor->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL));
}

Input openClip(const fs::path& file, const std::string& pictureRate)
{
    checkReadable(file);
    // A clip may point elsewhere (playlists, references): only to files of this machine.
    Dictionary options;
    options.set("protocol_whitelist", "file");
    if (namesPictures(file)) {
        options.set("start_number_range", kFirstPictureUpTo);
        if (!pictureRate.empty())
            options.set("framerate", pictureRate);
    }
    AVFormatContext* opened = nullptr;
    const int result =
        avformat_open_input(&opened, ("file:" + file.string()).c_str(), nullptr, options.address());
    if (result == AVERROR(ENOENT))
        throw ToolError(ExitCode::missingInput, "no such file: " + file.string());
    if (result < 0)
        throw ToolError(ExitCode::unreadable, "cannot read " + file.string() + ": " + errorText(result));
    Input input(opened);
    if (avformat_find_stream_info(opened, nullptr) < 0)
        throw ToolError(ExitCode::unreadable, "cannot read " + file.string() + ": no streams found");
    return input;
}

FrameTable readFrameTable(const fs::path& file, const std::string& pictureRate)
{
    const Input input = openClip(file, pictureRate);
    const int stream = videoStreamOf(*input, file);
    keepOnly(*input, stream);
    FrameTable table;
    std::int64_t last = AV_NOPTS_VALUE;
    const Packet packet = makePacket();
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index == stream && !(packet->flags & AV_PKT_FLAG_DISCARD)) {
            table.times.push_back(packet->pts);
            // Indices count decoding times, which come first; an earlier place than needed does no harm.
            if (packet->flags & AV_PKT_FLAG_KEY && packet->dts != AV_NOPTS_VALUE
                && packet->pts != AV_NOPTS_VALUE)
                table.keys.push_back({packet->dts, packet->pts});
            if (packet->pts >= last) {
                last = packet->pts;
                table.lastDuration = packet->duration;
            }
        }
        av_packet_unref(packet.get());
    }
    std::ranges::sort(table.times);
    return table;
}

ClipReader::ClipReader(const fs::path& file, const std::string& pictureRate)
    : pictureRate_(pictureRate),
      input_(openClip(file, pictureRate)),
      packet_(makePacket())
{
    info_.file = file;
    stream_ = videoStreamOf(*input_, file);
    openDecoder();
    describe();
    keepOnly(*input_, stream_);
}

void ClipReader::openDecoder()
{
    const AVStream& stream = *input_->streams[stream_];
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec)
        throw ToolError(ExitCode::unreadable,
            "no decoder for " + std::string(avcodec_get_name(stream.codecpar->codec_id)) + " in "
                + info_.file.string());
    decoder_.reset(avcodec_alloc_context3(codec));
    if (!decoder_)
        throw std::bad_alloc();
    require(avcodec_parameters_to_context(decoder_.get(), stream.codecpar), "decoder parameters");
    decoder_->pkt_timebase = stream.time_base;
    decoder_->thread_count = 0; // as many as the machine has
    const int result = avcodec_open2(decoder_.get(), codec, nullptr);
    if (result < 0)
        throw ToolError(
            ExitCode::unreadable, "cannot decode " + info_.file.string() + ": " + errorText(result));
}

void ClipReader::describe()
{
    AVStream& stream = *input_->streams[stream_];
    const AVCodecParameters& stored = *stream.codecpar;
    info_.orientation = orientationOf(stream);
    info_.width = stored.width;
    info_.height = stored.height;
    info_.sampleAspect = av_guess_sample_aspect_ratio(input_.get(), &stream, nullptr);
    if (info_.orientation.swapsSides) {
        std::swap(info_.width, info_.height);
        if (info_.sampleAspect.num)
            info_.sampleAspect = av_inv_q(info_.sampleAspect);
    }
    info_.format = decoder_->pix_fmt;
    if (info_.width <= 0 || info_.height <= 0 || info_.format == AV_PIX_FMT_NONE)
        throw ToolError(ExitCode::unreadable, "no frame can be decoded from " + info_.file.string());
    info_.colour = {stored.color_range, stored.color_space, stored.color_primaries, stored.color_trc,
        stored.chroma_location};
    if (std::string_view(av_get_pix_fmt_name(info_.format)).starts_with("yuvj"))
        info_.colour.range = AVCOL_RANGE_JPEG;
    info_.timeBase = stream.time_base;
    info_.frameRate = stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
    if (info_.frameRate.num <= 0 || info_.frameRate.den <= 0)
        info_.frameRate = {25, 1};
    if (input_->start_time != AV_NOPTS_VALUE)
        info_.start = av_rescale_q(input_->start_time, AV_TIME_BASE_Q, stream.time_base);
    if (stream.duration != AV_NOPTS_VALUE)
        info_.duration = double(stream.duration) * av_q2d(stream.time_base);
    else if (input_->duration != AV_NOPTS_VALUE)
        info_.duration = double(input_->duration) / AV_TIME_BASE;
    info_.frames = stream.nb_frames > 0 ? stream.nb_frames : (long long)(info_.duration * info_.rate() + 0.5);
    for (unsigned i = 0; i < input_->nb_streams; ++i) {
        const AVMediaType type = input_->streams[i]->codecpar->codec_type;
        info_.audioStreams += type == AVMEDIA_TYPE_AUDIO;
        info_.subtitleStreams += type == AVMEDIA_TYPE_SUBTITLE;
    }
}

void ClipReader::skipTo(long long frame)
{
    if (frame <= 0 || !seeksExactly(*input_))
        return;
    const FrameTable table = readFrameTable(info_.file, pictureRate_);
    const bool ascends = std::ranges::adjacent_find(table.times, std::greater_equal()) == table.times.end();
    if (!ascends || table.times.empty() || table.times.front() == AV_NOPTS_VALUE
        || frame >= (long long)(table.times.size()))
        return;
    const std::int64_t wanted = table.times[std::size_t(frame)];
    const FrameTable::Key* from = nullptr;
    for (const FrameTable::Key& key : table.keys)
        if (key.shown <= wanted && (!from || key.shown > from->shown))
            from = &key;
    if (!from || av_seek_frame(input_.get(), stream_, from->decoded, AVSEEK_FLAG_BACKWARD) < 0)
        return;
    discardBefore_ = wanted;
    firstTime_ = table.times.front();
    index_ = frame - 1;
}

bool ClipReader::next(AVFrame& frame)
{
    while (decode(frame)) {
        if (discardBefore_ && frame.best_effort_timestamp < *discardBefore_)
            continue;
        const std::int64_t step = av_rescale_q(1, av_inv_q(info_.frameRate), info_.timeBase);
        const bool ascends = frame.best_effort_timestamp != AV_NOPTS_VALUE
            && (lastTime_ == AV_NOPTS_VALUE || frame.best_effort_timestamp > lastTime_);
        if (ascends)
            lastTime_ = frame.best_effort_timestamp;
        else
            lastTime_ =
                lastTime_ == AV_NOPTS_VALUE ? info_.start : lastTime_ + std::max<std::int64_t>(1, step);
        frame.pts = lastTime_;
        if (firstTime_ == AV_NOPTS_VALUE)
            firstTime_ = lastTime_;
        ++index_;
        return true;
    }
    if (index_ < 0)
        throw ToolError(ExitCode::unreadable, "no frame can be decoded from " + info_.file.string());
    return false;
}

bool ClipReader::decode(AVFrame& frame)
{
    while (true) {
        av_frame_unref(&frame);
        const int result = avcodec_receive_frame(decoder_.get(), &frame);
        if (result >= 0)
            return true;
        if (result == AVERROR_EOF)
            return false;
        if (result != AVERROR(EAGAIN))
            ++damaged_;
        else if (!feed())
            return false;
    }
}

bool ClipReader::feed()
{
    if (drained_)
        return false;
    int result = 0;
    do {
        av_packet_unref(packet_.get());
        result = av_read_frame(input_.get(), packet_.get());
    } while (result >= 0 && packet_->stream_index != stream_);
    drained_ = result < 0;
    if (drained_ && result != AVERROR_EOF)
        ++damaged_;
    if (avcodec_send_packet(decoder_.get(), drained_ ? nullptr : packet_.get()) < 0)
        ++damaged_;
    return true;
}

} // namespace media
