// A table of the times of a clip's frames, and of the places where decoding can begin.
#pragma once

#include "effectengine/media/ClipSource.h"
#include "effectengine/media/ffmpeg.h"

#include <vector>

namespace tool::media {

/// What a pass over the packets tells without decoding them.
struct FrameTable {
    /// A picture that needs none before it.
    struct Key {
        std::int64_t decoded; ///< when it is decoded
        std::int64_t shown;   ///< when it is shown
    };
    std::vector<std::int64_t> times; ///< ascending
    std::vector<Key> keys;         ///< those where a decoder knows all that one does that has read everything
    std::int64_t lastDuration = 0; ///< of the last frame; 0 unknown
    bool numbers = false;          ///< whether times tell frames apart, and the file leads to each key

    long long count() const { return (long long)(times.size()); }
    /// The number of the frame at this time, or of the one before it; -1 before the first.
    long long at(std::int64_t time) const;
};

/// Reads all packets of a clip. Throws ToolError.
FrameTable readFrameTable(const ClipSource& source);

} // namespace tool::media
