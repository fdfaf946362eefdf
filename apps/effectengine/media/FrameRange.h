// The part of a clip that is wanted, as frame numbers.
#pragma once

#include "effectengine/clipVerbs.h"

#include <limits>
#include <string>

namespace tool::media {

class ClipReader;
struct ClipInfo;

/// Frames first to last, both counted, from 0.
struct FrameRange {
    static constexpr long long kOpen = std::numeric_limits<long long>::max();
    long long first = 0;
    long long last = kOpen;

    bool whole() const { return first == 0 && last == kOpen; }
    bool holds(long long frame) const { return frame >= first && frame <= last; }
};

/// Times from `start` on and before `end`, in seconds since the first frame.
struct TimeRange {
    double start = 0;
    double end = std::numeric_limits<double>::infinity();

    bool whole() const { return start <= 0 && end == std::numeric_limits<double>::infinity(); }
};

/// The frames that are wanted: those of the numbers at the times. Times are numbers already where the clip
/// tells all its times beforehand.
struct ClipPart {
    FrameRange frames;
    TimeRange times;

    bool whole() const { return frames.whole() && times.whole(); }
};

/// The part that --frames, or --start and --end, name. Throws ToolError: none of the clip's frames is in it,
/// as far as that can be known, or the options cannot be read.
ClipPart partOf(const InputOptions& options, ClipReader& reader);

/// Whether a frame is shown at this moment, in seconds since the first frame, or after it, as far as the
/// clip's unit of times can tell.
bool isAtOrAfter(std::int64_t time, std::int64_t first, const ClipInfo& clip, double seconds);

/// Throws the ToolError for a part that has none of the clip's frames.
[[noreturn]] void throwNoFrames(const InputOptions& options, ClipReader& reader, long long frames);

/// Reads "A-B", "A-" or "A"; an empty text stands for all frames. Throws ToolError.
FrameRange parseFrames(const std::string& text);

/// Reads seconds, or [HOURS:]MINUTES:SECONDS, with a fraction or without; an empty text leaves the side open.
/// Throws ToolError.
TimeRange parseTimes(const std::string& start, const std::string& end);

/// Reads "I/N": the I-th of N equal parts of a clip with so many frames. Throws ToolError.
FrameRange parseChunk(const std::string& text, long long frames);

} // namespace tool::media
