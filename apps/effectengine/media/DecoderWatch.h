// The errors that a decoder tells only in FFmpeg's log.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <mutex>
#include <set>

namespace tool::media {

/// Decoders answer for most damage, but tell of some, such as reference pictures that are not there, only in
/// the library's log. This gathers the errors of the log by the packet at fault, as far as it has a time;
/// decoders work on several threads, so they come at any time up to the one at which the packet's own frame
/// comes.
class DecoderWatch {
public:
    /// Makes every watch of the process hear its decoder. The library's own lines on stderr end; the tool
    /// says what matters.
    static void listen();

    /// To be called before each packet is sent to a decoder whose `opaque` is this.
    static void mark(AVCodecContext& decoder, const AVPacket& packet);

    /// Whether there was an error in a packet that is shown at this time.
    bool complainedAt(std::int64_t time) const;
    /// Whether there was an error in a packet that is shown at this time or later.
    bool complainedSince(std::int64_t time) const;
    void forget();

private:
    static void hear(void* source, int level, const char* format, va_list arguments);

    mutable std::mutex mutex_;
    std::set<std::int64_t> times_;
};

} // namespace tool::media
