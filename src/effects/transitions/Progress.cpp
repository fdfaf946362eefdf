// The progress curves.
#include "effects/transitions/Progress.h"

#include <cmath>

namespace transitions {

Progress::Progress(float time, float total) : time_(time), total_(total), smoothed_(0)
{
    const double t = total;
    const double e = easedTime();
    smoothed_ = pixels::clamped(float((3 * t * e * e - 2 * e * e * e) / (t * t)), 0.0f, total);
}

double Progress::easedTime() const
{
    constexpr double kTurn = 2 * std::numbers::pi;
    const double t = total_;
    return time_ - t / kTurn * std::sin(kTurn * time_ / t);
}

} // namespace transitions
