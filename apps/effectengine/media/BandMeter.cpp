// Windows, transforms, and the sums over bands.
#include "effectengine/media/BandMeter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace tool::media {

namespace {

/// Windows are at least this part of a second: long enough to tell a bass from what lies below it, short
/// enough that a beat stays within a frame.
constexpr int kWindowsPerSecond = 32;

constexpr std::size_t kSamplesInOneGo = 1 << 16;

} // namespace

BandMeter::BandMeter(int sampleRate, std::span<const Band> bands)
    : sampleRate_(sampleRate),
      size_(int(std::bit_ceil(unsigned(std::max(2, sampleRate / kWindowsPerSecond))))),
      window_(std::size_t(size_)),
      powers_(bands.size() + 1),
      start_(-size_ / 2),
      input_(std::size_t(size_)),
      spectrum_(std::size_t(size_) + 2)
{
    AVTXContext* context = nullptr;
    const double scale = 1;
    // In double precision the library has no versions for single processors, which would differ in the last
    // bits.
    require(av_tx_init(&context, &run_, AV_TX_DOUBLE_RDFT, 0, size_, &scale, AV_TX_UNALIGNED), "transform");
    transform_.reset(context);

    double energy = 0;
    for (std::size_t i = 0; i < window_.size(); ++i) {
        window_[i] = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * double(i) / size_);
        windowSum_ += window_[i];
        energy += window_[i] * window_[i];
    }
    // One side of the spectrum stands for both.
    const double share = 2 / (energy * size_);
    const double width = double(sampleRate_) / size_;
    const auto weightsOf = [&](const Band& band) {
        std::vector<double> weights(std::size_t(size_) / 2 + 1);
        for (std::size_t k = 0; k < weights.size(); ++k) {
            const double from = std::max(band.low, (double(k) - 0.5) * width);
            const double to = std::min(band.high, (double(k) + 0.5) * width);
            weights[k] = share * std::max(0.0, to - from) / width;
        }
        return weights;
    };
    for (const Band& band : bands)
        weights_.push_back(weightsOf(band));
    weights_.push_back(weightsOf({0, double(sampleRate_)}));
}

std::int64_t BandMeter::centre() const
{
    return (std::int64_t(powers_.back().size()) * sampleRate_ + kRate / 2) / kRate;
}

void BandMeter::take(std::int64_t position, std::span<const double> samples)
{
    static constexpr double kSilence[1024] = {};
    while (position > end())
        append({kSilence, std::min(std::size(kSilence), std::size_t(position - end()))});
    const std::int64_t known = end() - position;
    if (known < std::int64_t(samples.size()))
        append(samples.subspan(std::size_t(known)));
}

void BandMeter::append(std::span<const double> samples)
{
    samples_.insert(samples_.end(), samples.begin(), samples.end());
    while (end() >= centre() + size_ / 2)
        measure();
    const std::int64_t done = centre() - size_ / 2 - start_;
    if (done >= std::int64_t(kSamplesInOneGo)) {
        const std::int64_t gone = std::min(done, std::int64_t(samples_.size()));
        samples_.erase(samples_.begin(), samples_.begin() + gone);
        start_ += gone;
    }
}

void BandMeter::measure()
{
    const double* const samples = samples_.data() + (centre() - size_ / 2 - start_);
    double constant = 0; // an offset of the samples is no sound
    for (std::size_t i = 0; i < window_.size(); ++i)
        constant += samples[i] * window_[i];
    constant /= windowSum_;
    for (std::size_t i = 0; i < window_.size(); ++i)
        input_[i] = (samples[i] - constant) * window_[i];
    run_(transform_.get(), spectrum_.data(), input_.data(), sizeof(double));
    for (std::size_t band = 0; band < powers_.size(); ++band) {
        const std::vector<double>& weights = weights_[band];
        double power = 0;
        for (std::size_t k = 0; k < weights.size(); ++k)
            power += weights[k]
                * (spectrum_[2 * k] * spectrum_[2 * k] + spectrum_[2 * k + 1] * spectrum_[2 * k + 1]);
        powers_[band].push_back(power);
    }
}

void BandMeter::finish()
{
    const std::int64_t last = end();
    const std::vector<double> silence(window_.size());
    while (centre() - size_ / 2 < last)
        append(silence);
}

} // namespace tool::media
