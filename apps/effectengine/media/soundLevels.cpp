// Decoding of a clip's sound, and levels from the powers of its bands.
#include "effectengine/media/soundLevels.h"

#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/openClip.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace tool::media {

namespace {

/// Amplitude below which a sound is silence: a step of 16 bits.
constexpr double kSilence = 1.0 / 32768;
/// Amplitude, beside the loudest, at which a level is 0: 60 dB less.
constexpr double kFaintest = 1e-3;
/// Seconds by which times of packets may be off while the samples go on without a hole.
constexpr double kLoose = 0.02;

int soundStreamOf(const AVFormatContext& input, int track)
{
    for (unsigned i = 0; i < input.nb_streams; ++i)
        if (input.streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO && track-- == 0)
            return int(i);
    return -1;
}

/// The mean of a frame's channels.
template <class Sample> void mix(const AVFrame& frame, double zero, double one, std::vector<double>& mixed)
{
    const int channels = frame.ch_layout.nb_channels;
    const bool planar = av_sample_fmt_is_planar(AVSampleFormat(frame.format));
    for (int channel = 0; channel < channels; ++channel) {
        const auto* const samples = reinterpret_cast<const Sample*>(frame.extended_data[planar ? channel : 0])
            + (planar ? 0 : channel);
        const std::ptrdiff_t step = planar ? 1 : channels;
        for (int i = 0; i < frame.nb_samples; ++i)
            mixed[std::size_t(i)] += (double(samples[i * step]) - zero) / (one * channels);
    }
}

void mix(const AVFrame& frame, std::vector<double>& mixed)
{
    mixed.assign(std::size_t(frame.nb_samples), 0);
    switch (av_get_packed_sample_fmt(AVSampleFormat(frame.format))) {
    case AV_SAMPLE_FMT_U8:
        return mix<std::uint8_t>(frame, 128, 128, mixed);
    case AV_SAMPLE_FMT_S16:
        return mix<std::int16_t>(frame, 0, 32768, mixed);
    case AV_SAMPLE_FMT_S32:
        return mix<std::int32_t>(frame, 0, 2147483648.0, mixed);
    case AV_SAMPLE_FMT_S64:
        return mix<std::int64_t>(frame, 0, 9223372036854775808.0, mixed);
    case AV_SAMPLE_FMT_FLT:
        return mix<float>(frame, 0, 1, mixed);
    case AV_SAMPLE_FMT_DBL:
        return mix<double>(frame, 0, 1, mixed);
    default:
        return;
    }
}

/// Hands the samples of one stream to a meter, each at its time.
class SoundReader {
public:
    SoundReader(const std::filesystem::path& file, Input input, int stream, double origin)
        : input_(std::move(input)),
          stream_(*input_->streams[stream]),
          decoder_(openDecoder(stream_, file, nullptr)),
          origin_(origin)
    {
        readOnly(*input_, stream);
        if (input_->duration > 0)
            latest_ = double(input_->duration + std::max<std::int64_t>(0, input_->start_time)) / AV_TIME_BASE;
    }

    /// Measures the whole stream; empty when it has no sound.
    std::vector<std::vector<double>> measure(std::span<const Band> bands)
    {
        const Packet packet = makePacket();
        while (av_read_frame(input_.get(), packet.get()) >= 0) {
            stopIfAsked();
            if (packet->stream_index == stream_.index)
                decode(packet.get(), bands);
            av_packet_unref(packet.get());
        }
        decode(nullptr, bands);
        if (!meter_)
            return {};
        meter_->finish();
        return meter_->powers();
    }

private:
    // What is damaged is left out, and its place is silent.
    void decode(const AVPacket* packet, std::span<const Band> bands)
    {
        if (avcodec_send_packet(decoder_.get(), packet) < 0)
            return;
        while (avcodec_receive_frame(decoder_.get(), frame_.get()) >= 0) {
            if (!meter_ && frame_->sample_rate > 0) {
                rate_ = frame_->sample_rate;
                meter_.emplace(rate_, bands);
            }
            if (meter_ && frame_->sample_rate == rate_)
                take();
        }
    }

    void take()
    {
        mix(*frame_, mixed_);
        const std::int64_t position = positionOf(*frame_);
        meter_->take(position, mixed_);
        next_ = position + std::int64_t(mixed_.size());
    }

    std::int64_t positionOf(const AVFrame& frame) const
    {
        if (frame.best_effort_timestamp == AV_NOPTS_VALUE)
            return next_.value_or(0);
        const double time = double(frame.best_effort_timestamp) * av_q2d(stream_.time_base);
        const double seconds = time - origin_;
        const bool goesOn = next_ && std::abs(seconds - double(*next_) / rate_) <= kLoose;
        if (goesOn || time > latest_)
            return next_.value_or(0);
        return std::llround(seconds * rate_);
    }

    Input input_;
    const AVStream& stream_;
    Codec decoder_;
    double origin_;
    double latest_ = std::numeric_limits<double>::infinity(); ///< times behind it are damaged
    int rate_ = 0;
    Frame frame_ = makeFrame();
    std::vector<double> mixed_;
    std::optional<BandMeter> meter_;
    std::optional<std::int64_t> next_; ///< position that follows the last sample
};

std::vector<float> levelsOf(const std::vector<double>& powers, double loudestOfAll)
{
    std::vector<float> levels(powers.size());
    const double loudest = powers.empty() ? 0 : std::ranges::max(powers);
    const double faintest = std::max(kSilence * kSilence, loudestOfAll * kFaintest * kFaintest);
    if (loudest <= faintest)
        return levels;
    const double zero = std::sqrt(kFaintest);
    std::ranges::transform(powers, levels.begin(), [&](double power) {
        const double amplitude = std::sqrt(power / loudest);
        return float(std::max(0.0, (std::sqrt(amplitude) - zero) / (1 - zero)));
    });
    return levels;
}

} // namespace

std::vector<std::vector<float>> soundLevels(
    const std::filesystem::path& clip, std::span<const Band> bands, double origin, int track)
{
    std::vector<std::vector<float>> levels(bands.size());
    Input input = openClip(clip);
    const int stream = soundStreamOf(*input, track);
    if (stream < 0) {
        warn(clip.string() + ": no sound to follow; its level is 0 throughout");
        return levels;
    }
    std::vector<std::vector<double>> powers;
    try {
        powers = SoundReader(clip, std::move(input), stream, origin).measure(bands);
    } catch (const ToolError&) { // without a decoder
    }
    if (powers.empty()) {
        warn(clip.string() + ": its sound cannot be decoded; its level is 0 throughout");
        return levels;
    }
    const double loudest = powers.back().empty() ? 0 : std::ranges::max(powers.back());
    for (std::size_t i = 0; i < bands.size(); ++i)
        levels[i] = levelsOf(powers[i], loudest);
    return levels;
}

} // namespace tool::media
