// Encoding of frames, and writing of their packets together with those of the tracks.
#include "effectengine/media/ClipFile.h"

#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/animationPlays.h"
#include "effectengine/media/encoders.h"
#include "effectengine/media/gifFrames.h"

#include <algorithm>
#include <limits>

namespace tool::media {

namespace {

// The options of a container's muxer.
void setContainerOptions(
    Dictionary& options, const AVOutputFormat& container, const ClipNotes& notes, bool toPipe)
{
    setPlays(options, container, notes.plays.value_or(0));
    if (toPipe && std::string_view(container.name) == "nut")
        options.set("write_index", "0"); // it would be gathered in memory
    if (!isQuickTimeKind(container))
        return;
    // It plays while it loads. Notes of phones and cameras, which no table lists, need one of their own.
    const bool ofCamera =
        std::ranges::any_of(notes.file, [](const auto& note) { return note.first.starts_with("com."); });
    options.set("movflags",
        std::string(toPipe ? "+frag_keyframe+empty_moov+default_base_moof" : "+faststart")
            + (ofCamera ? "+use_metadata_tags" : ""));
}

} // namespace

ClipFile::ClipFile(
    const std::filesystem::path& out, const FrameShape& shape, const EncoderChoice& choice, SideTracks tracks)
    : name_(outputName(out)),
      unit_(shape.timeBase),
      packet_(makePacket())
{
    if (!goesToPipe(out))
        file_.emplace(out);
    const AVOutputFormat& container = containerFor(out, choice.container);
    AVFormatContext* opened = nullptr;
    require(
        avformat_alloc_output_context2(&opened, &container, nullptr, file_ ? file_->path().c_str() : nullptr),
        "container");
    output_.reset(opened);

    const AVCodec& codec = encoderOf(out, choice);
    if (avformat_query_codec(&container, codec.id, FF_COMPLIANCE_NORMAL) == 0)
        throw ToolError(ExitCode::usage,
            name_.string() + " cannot hold " + avcodec_get_name(codec.id)
                + "; choose another name or --codec");
    encoder_ = openEncoder(codec, shape, choice, container.flags & AVFMT_GLOBALHEADER);
    if (encoder_->pix_fmt == AV_PIX_FMT_PAL8)
        palette_.emplace(shape);
    clearsFrames_ = codec.id == AV_CODEC_ID_GIF && shape.keepsAlpha;

    stream_ = avformat_new_stream(opened, nullptr);
    if (!stream_)
        throw std::bad_alloc();
    require(avcodec_parameters_from_context(stream_->codecpar, encoder_.get()), "stream");
    stream_->time_base = encoder_->time_base;
    stream_->avg_frame_rate = shape.frameRate;
    stream_->sample_aspect_ratio = shape.sampleAspect;
    tracks.notes.apply(*opened, *stream_, isHighRange(encoder_->color_trc));
    for (auto& track : tracks.tracks)
        addTrack(std::move(track));

    open(out);
    Dictionary options;
    setContainerOptions(options, container, tracks.notes, !file_);
    const int result = avformat_write_header(opened, options.address());
    if (result == AVERROR(EINVAL))
        throw ToolError(
            ExitCode::usage, name_.string() + " cannot hold these streams; choose another name or --codec");
    check(result);
}

void ClipFile::open(const std::filesystem::path& out)
{
    if (file_) {
        file_->claim();
        check(avio_open(&output_->pb, ("file:" + file_->path().string()).c_str(), AVIO_FLAG_WRITE));
        return;
    }
    constexpr std::int64_t kLongestWait = AV_TIME_BASE / 2;
    pipe_ = openPipeToWrite(out);
    output_->pb = pipe_.get();
    // Frames go on at once, and wait for sound only as long as it comes along with them.
    output_->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_FLUSH_PACKETS;
    output_->max_interleave_delta = kLongestWait;
}

void ClipFile::addTrack(std::unique_ptr<SideTrack> source)
{
    AVStream* const stream = avformat_new_stream(output_.get(), nullptr);
    if (!stream)
        throw std::bad_alloc();
    require(avcodec_parameters_copy(stream->codecpar, &source->parameters()), "stream");
    stream->codecpar->codec_tag = 0; // each container marks the codec in its own way
    stream->time_base = source->timeBase();
    mark(*stream, source->marks(), *output_->oformat);
    tracks_.push_back({std::move(source), stream});
}

AVPixelFormat ClipFile::format() const { return palette_ ? AV_PIX_FMT_BGRA : encoder_->pix_fmt; }

Colour ClipFile::colour() const
{
    return {encoder_->color_range, encoder_->colorspace, encoder_->color_primaries, encoder_->color_trc,
        encoder_->chroma_sample_location};
}

void ClipFile::write(AVFrame& frame, const FramePlace& place)
{
    if (palette_)
        palette_->apply(frame);
    frame.pts = av_rescale_q(frame.pts, unit_, encoder_->time_base);
    if (lastTime_ != AV_NOPTS_VALUE && frame.pts <= lastTime_)
        frame.pts = lastTime_ + 1; // a coarser unit than the clip's
    lastTime_ = frame.pts;
    lastDuration_ = place.duration > 0 ? place.duration : 0;
    if (place.duration > 0)
        durations_[frame.pts] = av_rescale_q(place.duration, unit_, encoder_->time_base);
    frame.pict_type = AV_PICTURE_TYPE_NONE;
    encode(&frame);
    tellWritten();
}

void ClipFile::encode(AVFrame* frame)
{
    require(avcodec_send_frame(encoder_.get(), frame), "encoder");
    while (true) {
        const int result = avcodec_receive_packet(encoder_.get(), packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        require(result, "encoder");
        if (clearsFrames_)
            clearBeforeNext(*packet_);
        if (const auto duration = durations_.find(packet_->pts); duration != durations_.end()) {
            packet_->duration = duration->second;
            durations_.erase(duration);
        }
        writeTracksUpTo(packet_->dts, encoder_->time_base);
        packet_->stream_index = stream_->index;
        av_packet_rescale_ts(packet_.get(), encoder_->time_base, stream_->time_base);
        writePacket(*packet_);
    }
}

void ClipFile::writeTracksUpTo(std::int64_t time, AVRational unit)
{
    for (Track& track : tracks_) {
        while (!track.ended) {
            stopIfAsked();
            AVPacket& packet = *track.waiting;
            if (!packet.data && !track.source->next(packet)) {
                track.ended = !track.source->mayGoOn();
                break;
            }
            if (packet.dts != AV_NOPTS_VALUE
                && av_compare_ts(packet.dts, track.source->timeBase(), time, unit) > 0)
                break;
            packet.stream_index = track.stream->index;
            packet.pos = -1;
            av_packet_rescale_ts(&packet, track.source->timeBase(), track.stream->time_base);
            writePacket(packet);
        }
    }
}

void ClipFile::writePacket(AVPacket& packet) { check(av_interleaved_write_frame(output_.get(), &packet)); }

void ClipFile::check(int result)
{
    // A write into a buffer may fail later; then only the stream holds the error.
    if (result >= 0 && output_->pb && output_->pb->error < 0)
        result = output_->pb->error;
    if (result == AVERROR_EXIT)
        stopIfAsked();
    if (result == AVERROR(EPIPE) && pipe_)
        stopForClosedReader(*pipe_, name_);
    if (result < 0)
        throwCannotWrite(name_, AVUNERROR(result));
}

void ClipFile::finish()
{
    encode(nullptr);
    writeTracksUpTo(std::numeric_limits<std::int64_t>::max(), {1, 1});
    setFinalDelay(*output_, av_mul_q({int(std::min<std::int64_t>(lastDuration_, 1 << 20)), 1}, unit_));
    check(av_write_trailer(output_.get()));
    if (pipe_)
        avio_flush(pipe_.get());
    check(0);
    if (!file_)
        return;
    const int closed = avio_closep(&output_->pb);
    if (closed < 0)
        throwCannotWrite(name_, AVUNERROR(closed));
    file_->keep();
}

} // namespace tool::media
