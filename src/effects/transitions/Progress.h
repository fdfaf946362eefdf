// How far a transition has come: the progress curves and the amounts made from them.
#pragma once

#include "pixels/numbers.h"

#include <numbers>

namespace transitions {

/// Time in [0, total], total positive and finite. Curves are double precision; what is stored as a smoothed
/// time, and amounts made from it, are single.
class Progress {
public:
    Progress(float time, float total);

    float time() const { return time_; }
    float total() const { return total_; }
    bool atStart() const { return time_ == 0; }
    bool atEnd() const { return time_ == total_; }

    /// time / total.
    double linear() const { return double(time_) / total_; }
    /// 1 at the start, 0 at the end.
    double linearRest() const { return (double(total_) - time_) / total_; }

    /// The sine-eased time: it runs like the plain one, but starts and ends at rest.
    double easedTime() const;

    /// The eased time, smoothed once more; between 0 and total.
    float smoothedTime() const { return smoothed_; }
    double smoothed() const { return double(smoothed_) / total_; }

    /// The smoothed part of `whole`: exactly 0 at the start and `whole` at the end.
    float smoothedPart(int whole) const { return part(whole, smoothed_); }
    /// What the smoothed part leaves: exactly `whole` at the start and 0 at the end.
    float smoothedRest(int whole) const { return part(whole, total_ - smoothed_); }
    /// The smoothed part and the smoothed rest of `whole`, rounded to whole pixels.
    int smoothedAmount(int whole) const { return pixels::roundHalfUp(smoothedPart(whole)); }
    int smoothedRestAmount(int whole) const { return pixels::roundHalfUp(smoothedRest(whole)); }
    /// The linear part of `whole` in whole pixels.
    int linearAmount(double whole) const { return pixels::roundHalfUp(whole * linear()); }

private:
    // The product may round so that its quotient misses `whole` at the end, or overflow for huge times.
    float part(int whole, float time) const
    {
        const float most = float(whole);
        return time == total_ ? most : pixels::clamped(most * time / total_, 0.0f, most);
    }

    float time_;
    float total_;
    float smoothed_;
};

} // namespace transitions
