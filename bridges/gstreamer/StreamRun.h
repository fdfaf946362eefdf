// A look at work on the frames of one stream.
#pragma once

#include "gstreamer/EffectProperties.h"

#include <gst/video/video.h>

#include <memory>
#include <span>

namespace bridge {

/// Where a look comes from, as EffectHostCreateLook takes it.
struct LookSource {
    EffectHostLookSource kind = EFFECTHOST_LOOK_EMPTY;
    std::string text;
    friend bool operator==(const LookSource&, const LookSource&) = default;
};

/// Times of a frame, in seconds and frames a second.
struct StreamTime {
    double seconds = 0;
    double rate = 25;
    double duration = 5;
};

/// Runs that are made when a frame needs them, and made anew when the look or the size changes. For the
/// thread that streams; where a function answers false, EffectHostLastError() has the words.
class StreamRun {
public:
    /// Makes the next frame's look this one.
    void use(LookSource source);

    /// The next frame has no earlier ones.
    void forgetFrames() { fresh_ = true; }

    /// Ends the run.
    void stop() { run_.reset(); }

    /// Whether frames of the look depend on earlier ones; makes the look.
    bool dependsOnEarlierFrames(bool& depends);

    /// Runs the look on frames of one size.
    bool run(std::span<const EffectHostPicture> inputs, const EffectHostPicture& output,
        const StreamTime& time, EffectProperties* properties);

private:
    struct Release {
        void operator()(EffectHostLook* look) const { EffectHostReleaseLook(look); }
        void operator()(EffectHostRun* run) const { EffectHostReleaseRun(run); }
    };

    bool makeLook();
    bool makeRun(std::int32_t width, std::int32_t height);

    LookSource source_;
    std::unique_ptr<EffectHostLook, Release> look_;
    std::unique_ptr<EffectHostRun, Release> run_;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    bool runIsNew_ = false;
    bool fresh_ = false;
};

} // namespace bridge
