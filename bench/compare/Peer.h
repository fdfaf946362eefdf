// What other libraries do to the same frames, as near to one of the effects as they have it.
#pragma once

#include "hosting/measure.h"

#include <array>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace compare {

/// Two frames, packed: blue, green, red, alpha.
struct Frames {
    host::FrameSize size;
    std::array<std::span<unsigned char>, 2> pixels;
};

struct Peer {
    std::string effect; ///< the name of the effect that it stands beside
    std::string library;
    std::string call;           ///< what the library is asked for, in its own words
    std::function<void()> once; ///< makes one frame of the first frame, or of both
};

// Each reads the frames in place, in the layout that its library takes without a conversion of its own, and
// uses as many threads as it is given. The frames must outlive the peers. They throw std::runtime_error for a
// library that does not do what it is asked.

std::vector<Peer> ffmpegPeers(const Frames& frames, int threads);
#ifdef EFFECTENGINE_COMPARE_OPENCV
std::vector<Peer> openCvPeers(const Frames& frames, int threads);
#endif
#ifdef EFFECTENGINE_COMPARE_VIPS
std::vector<Peer> vipsPeers(const Frames& frames, int threads);
#endif

/// The standard deviation of the Gaussian that the effect "blur" is like with its example value: its kernel
/// is a triangle over 2 * radius + 1 pixels, whose variance is ((radius + 1)^2 - 1) / 6; the radius is a
/// hundredth of the longer side.
double blurDeviation(host::FrameSize size);

/// The file of the table that the effect "cube-lut" gets as its example.
std::string exampleTable();

} // namespace compare
