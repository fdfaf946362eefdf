// Measurement of an effect's time, and of a memcpy of the same frame to compare it with.
#pragma once

#include "facts/EffectInfo.h"
#include "facts/Param.h"
#include "hosting/Host.h"

#include <span>
#include <vector>

namespace host {

struct FrameSize {
    unsigned width;
    unsigned height;
};

/// Median time of a memcpy of a frame on the calling thread, measured once per size and process.
double copySeconds(FrameSize frame);

/// The median of at least one time. Reorders them.
double median(std::vector<double>& times);

/// Fills the image with smooth areas, edges and noise, about as much of each as in a photograph; the same in
/// every process. @param seed  makes pictures that differ
void paint(const Image& image, unsigned seed);

/// An effect with example values over painted frames, warmed up: effects with a history are in their steady
/// state and own all their memory. Throws Failure when the effect is not available.
class EffectRun {
public:
    EffectRun(const KEXSDK::EffectInfo& effect, std::span<const KEXSDK::ParamInfo* const> parameters,
        FrameSize frame);

    /// Evaluates one frame. @return seconds
    double once();

private:
    std::vector<Image> inputs_;
    Filter filter_;
};

} // namespace host
