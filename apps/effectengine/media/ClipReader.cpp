// Decoding in order or by number, and the way back when a jump into the file went wrong.
#include "effectengine/media/ClipReader.h"

#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/ToneMapper.h"
#include "effectengine/media/openClip.h"
#include "effectengine/photoMetadata.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

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

// The EXIF orientation of the first of numbered photographs counts for all. A packet holds a file's bytes.
Orientation orientationOfPictures(const AVFormatContext& pictures, const ClipSource& source)
{
    const std::string_view format = pictures.iformat->name;
    if ((format != "image2" && !format.ends_with("_pipe")) || source.passesOnce())
        return {};
    const Input input = openClip(source); // the first packet of the other one is for the decoder
    const Packet packet = makePacket();
    if (av_read_frame(input.get(), packet.get()) < 0)
        return {};
    const Turn turn = turnOf(readPhotoMetadata({packet->data, std::size_t(packet->size)}).orientation);
    return {turn.swapsSides, turn.mirrorsColumns, turn.mirrorsRows};
}

} // namespace

Colour ClipInfo::pictureColour() const
{
    if (!isToneMapped())
        return colour;
    return {AVCOL_RANGE_MPEG, AVCOL_SPC_BT709, AVCOL_PRI_BT709, AVCOL_TRC_BT709, colour.location};
}

ClipReader::ClipReader(const ClipSource& source, const DepthOptions& depth)
    : packet_(makePacket()),
      ahead_(makeFrame()),
      before_(makeFrame())
{
    info_.source = source;
    info_.file = source.name();
    if (source.passesOnce())
        pipe_ = openPipeToRead(source.path());
    begin();
    describe();
    info_.depth = depth;
    if (depth.toneMapping != ToneMapping::none)
        chooseToneMapping();
}

void ClipReader::chooseToneMapping()
{
    checkToneMapping();
    if (isHighRange(info_.colour.transfer))
        info_.brightest = brightestOf(info_.source, *input_->streams[stream_]);
    else
        info_.depth.toneMapping = ToneMapping::none;
}

// Opens the file anew at its start, with a fresh decoder: one that has seen later packets would go on with
// their parameter sets.
void ClipReader::begin()
{
    decoder_.reset();
    watch_.forget();
    input_ = pipe_ ? openPassingClip(info_.source, *pipe_) : openClip(info_.source);
    stream_ = pictureStreamOf(*input_, info_.file);
    decoder_ = openDecoder(*input_->streams[stream_], info_.file, &watch_);
    readOnly(*input_, stream_);
    from_.reset();
    failed_ = false;
    drained_ = false;
    breaksOff_ = false;
    aheadNumber_ = -1;
    av_frame_unref(ahead_.get());
    av_frame_unref(before_.get());
}

void ClipReader::describe()
{
    AVStream& stream = *input_->streams[stream_];
    const AVCodecParameters& stored = *stream.codecpar;
    info_.orientation = orientationOf(stream);
    if (info_.orientation.upright())
        info_.orientation = orientationOfPictures(*input_, info_.source);
    info_.width = stored.width;
    info_.height = stored.height;
    info_.sampleAspect = av_guess_sample_aspect_ratio(input_.get(), &stream, nullptr);
    if (info_.orientation.swapsSides) {
        std::swap(info_.width, info_.height);
        if (info_.sampleAspect.num)
            info_.sampleAspect = av_inv_q(info_.sampleAspect);
    }
    info_.codec = stored.codec_id;
    info_.format = decoder_->pix_fmt;
    if (info_.width <= 0 || info_.height <= 0 || info_.format == AV_PIX_FMT_NONE)
        throw ToolError(ExitCode::unreadable, "no frame can be decoded from " + info_.file.string());
    info_.colour = {stored.color_range, stored.color_space, stored.color_primaries, stored.color_trc,
        stored.chroma_location};
    if (std::string_view(av_get_pix_fmt_name(info_.format)).starts_with("yuvj"))
        info_.colour.range = AVCOL_RANGE_JPEG;
    const AVCodecDescriptor* const codec = avcodec_descriptor_get(stored.codec_id);
    intraOnly_ = codec && codec->props & AV_CODEC_PROP_INTRA_ONLY;
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
    info_.duration = std::max(0.0, info_.duration); // some formats count a pipe's bytes, which nobody knows
    info_.frames = stream.nb_frames > 0 ? stream.nb_frames : (long long)(info_.duration * info_.rate() + 0.5);
    for (unsigned i = 0; i < input_->nb_streams; ++i) {
        const AVMediaType type = input_->streams[i]->codecpar->codec_type;
        info_.audioStreams += type == AVMEDIA_TYPE_AUDIO;
        info_.subtitleStreams += type == AVMEDIA_TYPE_SUBTITLE;
    }
}

const FrameTable& ClipReader::table()
{
    if (!table_)
        table_ = readFrameTable(info_.source);
    return *table_;
}

void ClipReader::handOnOthers(const std::vector<int>& streams, Take take)
{
    for (const int stream : streams)
        input_->streams[stream]->discard = AVDISCARD_DEFAULT;
    takeOther_ = std::move(take);
}

void ClipReader::skipTo(long long frame)
{
    if (frame <= 0 || pipe_ || !table().numbers || frame >= table().count())
        return;
    index_ = frame - 1;
    keysBack_ = 1;
    beginBefore(frame, keysBack_);
}

void ClipReader::startAgain()
{
    begin();
    index_ = -1;
    firstTime_ = AV_NOPTS_VALUE;
    lastTime_ = AV_NOPTS_VALUE;
    keysBack_ = 0;
}

// Seeks to a key that is shown no later than a frame: the last one, or for `keysBack` above 1 that many keys
// back. False when there is none.
bool ClipReader::beginBefore(long long frame, std::size_t keysBack)
{
    const auto later = std::ranges::upper_bound(
        table_->keys, table_->times[std::size_t(frame)], {}, &FrameTable::Key::shown);
    if (std::size_t(later - table_->keys.begin()) < keysBack)
        return false;
    const FrameTable::Key key = *(later - std::ptrdiff_t(keysBack));
    if (av_seek_frame(input_.get(), stream_, key.decoded, AVSEEK_FLAG_BACKWARD) < 0)
        return false;
    from_ = key;
    return true;
}

// Begins twice as many keys back as last time, so that a damaged clip is soon decoded from its start.
void ClipReader::beginEarlier()
{
    begin();
    keysBack_ *= 2;
    if (!beginBefore(index_, keysBack_))
        begin();
}

bool ClipReader::next(AVFrame& frame)
{
    const auto begin = std::chrono::steady_clock::now();
    const bool found = table_ && table_->numbers ? nextByNumber(frame) : nextInOrder(frame);
    decoding_ += std::chrono::steady_clock::now() - begin;
    if (!found)
        stopIfAsked();
    if (!found && index_ < 0)
        throw ToolError(ExitCode::unreadable, "no frame can be decoded from " + info_.file.string());
    return found;
}

bool ClipReader::nextInOrder(AVFrame& frame)
{
    if (!decode(frame)) {
        if (std::exchange(failed_, false) || breaksOff_)
            damaged_.insert(index_ + 1);
        return false;
    }
    const std::int64_t step = av_rescale_q(1, av_inv_q(info_.frameRate), info_.timeBase);
    const std::int64_t time = frame.best_effort_timestamp;
    if (time != AV_NOPTS_VALUE && (lastTime_ == AV_NOPTS_VALUE || time > lastTime_))
        lastTime_ = time;
    else
        lastTime_ = lastTime_ == AV_NOPTS_VALUE ? info_.start : lastTime_ + std::max<std::int64_t>(1, step);
    frame.pts = lastTime_;
    if (firstTime_ == AV_NOPTS_VALUE)
        firstTime_ = lastTime_;
    ++index_;
    if (std::exchange(failed_, false) || isDamaged(frame))
        damaged_.insert(index_);
    return true;
}

bool ClipReader::nextByNumber(AVFrame& frame)
{
    if (index_ + 1 >= table_->count())
        return false;
    ++index_;
    firstTime_ = table_->times.front();
    while (aheadNumber_ < index_)
        decodeAhead();
    const bool lost = aheadNumber_ > index_;
    const AVFrame& shown = lost && before_->buf[0] ? *before_ : *ahead_;
    if (!shown.buf[0]) {
        --index_;
        return false;
    }
    if (lost || isDamaged(shown))
        damaged_.insert(index_);
    av_frame_unref(&frame);
    require(av_frame_ref(&frame, &shown), "frame");
    lastTime_ = frame.pts = table_->times[std::size_t(index_)];
    if (lost)
        frame.pkt_duration = 0;
    return true;
}

// Decodes one frame more, or begins again further back when a jump did not lead to the expected frame.
void ClipReader::decodeAhead()
{
    std::swap(before_, ahead_);
    const long long last = aheadNumber_;
    const bool found = decode(*ahead_);
    const std::int64_t time = found ? ahead_->best_effort_timestamp : AV_NOPTS_VALUE;
    aheadNumber_ = found ? table_->at(time) : table_->count();
    if (!from_)
        return;
    const bool leads = found && time < from_->shown; // into the key; may lack what stands before the jump
    const bool follows = last < 0 ? aheadNumber_ <= index_ : aheadNumber_ == last + 1;
    const bool known = found && aheadNumber_ >= 0 && table_->times[std::size_t(aheadNumber_)] == time;
    if (leads)
        aheadNumber_ = -1;
    else if (!known || !follows || failed_ || isDamaged(*ahead_) || watch_.complainedSince(from_->shown))
        beginEarlier();
}

bool ClipReader::isDamaged(const AVFrame& frame) const
{
    return frame.flags & AV_FRAME_FLAG_CORRUPT || frame.decode_error_flags
        || (!intraOnly_ && watch_.complainedAt(frame.best_effort_timestamp));
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
            failed_ = true;
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
        if (result >= 0 && packet_->stream_index != stream_ && takeOther_)
            takeOther_(*packet_);
    } while (result >= 0 && (packet_->stream_index != stream_ || packet_->size == 0));
    drained_ = result < 0;
    breaksOff_ = drained_ && result != AVERROR_EOF;
    DecoderWatch::mark(*decoder_, *packet_);
    if (avcodec_send_packet(decoder_.get(), drained_ ? nullptr : packet_.get()) < 0)
        failed_ = true;
    return true;
}

} // namespace tool::media
