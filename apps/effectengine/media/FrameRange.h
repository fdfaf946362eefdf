// Which frames of a clip are wanted.
#pragma once

#include <limits>
#include <string>

namespace media {

/// Frames first to last, both counted, from 0.
struct FrameRange {
    static constexpr long long kOpen = std::numeric_limits<long long>::max();
    long long first = 0;
    long long last = kOpen;

    bool whole() const { return first == 0 && last == kOpen; }
    bool holds(long long frame) const { return frame >= first && frame <= last; }
};

/// "A-B", "A-" or "A"; everything for an empty text. Throws ToolError.
FrameRange parseFrames(const std::string& text);

/// Part I of N equal parts of so many frames, from "I/N". Throws ToolError.
FrameRange parseChunk(const std::string& text, long long frames);

} // namespace media
