// The part of a clip that is wanted, as frame numbers.
#pragma once

#include <limits>
#include <string>

namespace tool::media {

/// Frames first to last, both counted, from 0.
struct FrameRange {
    static constexpr long long kOpen = std::numeric_limits<long long>::max();
    long long first = 0;
    long long last = kOpen;

    bool whole() const { return first == 0 && last == kOpen; }
    bool holds(long long frame) const { return frame >= first && frame <= last; }
};

/// Reads "A-B", "A-" or "A"; an empty text stands for all frames. Throws ToolError.
FrameRange parseFrames(const std::string& text);

/// Reads "I/N": the I-th of N equal parts of a clip with so many frames. Throws ToolError.
FrameRange parseChunk(const std::string& text, long long frames);

} // namespace tool::media
