// The power of bands of frequencies in a stream of samples, around evenly spaced times.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <cstdint>
#include <span>
#include <vector>

namespace tool::media {

/// Frequencies from `low` to `high`, in Hz.
struct Band {
    double low;
    double high;
};

/// Fourier transforms of windows that overlap, each centred on its time, so that powers are not delayed. The
/// same powers on every processor.
class BandMeter {
public:
    /// How many powers there are for each second.
    static constexpr int kRate = 100;

    /// @param sampleRate  above 0
    BandMeter(int sampleRate, std::span<const Band> bands);

    /// Takes the samples from a position on; position 0 is at second 0. What is missing before them is
    /// silent, and what comes before the end of earlier ones is left out.
    void take(std::int64_t position, std::span<const double> samples);

    /// The position that follows the last sample.
    std::int64_t end() const { return start_ + std::int64_t(samples_.size()); }

    /// Measures up to where the last sample has left the window.
    void finish();

    /// For each band the powers from second 0 on, those of a full-scale sine being 0.5; behind the bands, the
    /// powers of all frequencies.
    const std::vector<std::vector<double>>& powers() const { return powers_; }

private:
    struct Transform {
        void operator()(AVTXContext* context) const { av_tx_uninit(&context); }
    };

    void append(std::span<const double> samples);
    void measure();
    std::int64_t centre() const;

    int sampleRate_;
    int size_; ///< of a window, in samples
    std::unique_ptr<AVTXContext, Transform> transform_;
    av_tx_fn run_ = nullptr;
    std::vector<double> window_;
    double windowSum_ = 0;
    std::vector<std::vector<double>> weights_; ///< of each frequency in each band
    std::vector<std::vector<double>> powers_;
    std::vector<double> samples_; ///< those that windows may still need
    std::int64_t start_;          ///< position of the first one
    std::vector<double> input_;
    std::vector<double> spectrum_;
};

} // namespace tool::media
