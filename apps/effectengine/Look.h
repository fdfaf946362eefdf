// Looks and their runs with owners, and exceptions for the host library's codes.
#pragma once

#include "EffectEngine/EffectEngineHost.h"
#include "hosting/Host.h"

#include <filesystem>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace tool {

/// A call of the host library that did not succeed, with its words.
class LookError : public std::runtime_error {
public:
    LookError(EffectHostResult code, const std::string& words) : std::runtime_error(words), code_(code) { }
    EffectHostResult code() const { return code_; }

private:
    EffectHostResult code_;
};

/// Throws LookError unless the call succeeded.
void succeed(EffectHostResult result);

/// Where a frame stands. Seconds count from the start of the clip, not of the part that is rendered.
struct FrameTime {
    double seconds = 0;
    double frameRate = 25; ///< frames per second
    double total = 5;      ///< duration of the clip in seconds
};

/// Effects, what feeds them, and their parameters. The functions throw LookError.
class Look {
public:
    /// Without effects.
    Look();
    static Look fromFile(const std::filesystem::path& file);
    static Look fromJson(const std::string& text);

    /// Adds an effect that takes the output so far as its first input and becomes the output.
    void append(const std::string& effect);
    /// "NAME=VALUE" for the output's effect.
    void assign(const std::string& assignment);

    /// Checks the look; valid until it changes.
    const EffectHostLookInfo& info() const;
    std::span<const EffectHostNode> nodes() const { return {info().nodes, info().nodeCount}; }

private:
    friend class LookRun;
    struct Release {
        void operator()(EffectHostLook* look) const { EffectHostReleaseLook(look); }
    };
    Look(EffectHostLookSource source, const char* text);

    std::unique_ptr<EffectHostLook, Release> handle_;
};

/// Stands for all frames in EffectHostLookInfo::preRoll.
inline constexpr long long kAllFrames = EFFECTHOST_FROM_START;

/// A look at work on pictures of one size. One thread makes and runs it. The functions throw LookError.
class LookRun {
public:
    LookRun(const Look& look, unsigned width, unsigned height);

    /// Begins anew with the look of the start, as a new object would. The sources stay set.
    void restart(const Look& look);

    /// Sets the picture for "source" (0), "source-2" (1)...; it must have the run's size, and outlive the
    /// runs.
    void setSource(const host::Image& image, unsigned index = 0);

    /// Loudness of a band, samples of 0..1 at a rate.
    void setCurve(const std::string& band, std::span<const float> samples, double rate);

    /// Runs the look once. The picture belongs to this object and holds until the next run.
    /// @param unchanged  receives the ids of nodes that gave the bytes of their first input, which costs time
    CEffectImage* run(const FrameTime& time, std::vector<std::string>* unchanged = nullptr);

private:
    struct Release {
        void operator()(EffectHostRun* run) const { EffectHostReleaseRun(run); }
    };

    std::unique_ptr<EffectHostRun, Release> handle_;
    std::vector<EffectHostPicture> inputs_;
    host::Image output_;
};

} // namespace tool
