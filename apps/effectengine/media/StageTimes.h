// How long the stages of a run were at work, and which one the others waited for.
#pragma once

#include "effectengine/Progress.h"

#include <chrono>

namespace tool::media {

/// Times of one run. Each stage, which is a thread, adds to its own members.
struct StageTimes {
    using Duration = std::chrono::nanoseconds;

    Duration read{};   ///< reading, in all
    Duration decode{}; ///< the part of it before conversion
    Duration effects{};
    Duration convert{}; ///< to the output's frames, by the same thread as the effects
    Duration write{};   ///< encoding and writing
};

/// Calls a function and adds the time that it took.
template <class Function> auto timed(StageTimes::Duration& sum, Function function)
{
    struct Timer {
        StageTimes::Duration& sum;
        std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
        ~Timer() { sum += std::chrono::steady_clock::now() - begin; }
    };
    const Timer timer{sum};
    return function();
}

/// Measures a whole run from its construction on, and tells.
class RunReport {
public:
    RunReport();

    /// Prints what each stage did, in milliseconds for each frame: a table on stdout, or a line of JSON where
    /// progress goes there, too.
    void print(const StageTimes& times, long long frames, ProgressKind progress) const;

private:
    std::chrono::steady_clock::time_point begin_;
    double processorSeconds_;
};

} // namespace tool::media
