// The pipeline of all verbs for clips: frames are read, shown to effects, and written to an output.
#pragma once

#include "effectengine/clipVerbs.h"
#include "effectengine/media/ClipFrame.h"
#include "effectengine/media/ClipSink.h"
#include "pixels/View.h"

#include <functional>
#include <vector>

namespace tool::media {

/// What a verb tells the pipeline. All that it names must outlive the run.
struct ClipPipeline {
    std::vector<const ClipReader*> clips; ///< that the output shows, in the order of a frame's pictures
    ClipSink& sink;
    pixels::Extent size; ///< of the pictures
    AlphaChoice alpha;   ///< as the user chose
    bool keepsAlpha;     ///< false: every pixel of the output is opaque
    ReportOptions report;
    long long expectedFrames; ///< 0 unknown
    std::vector<ClipReader*> companions =
        {}; ///< that only effects see; their pictures follow those of the clips

    /// Fills in the next frame that effects must see; false after the last. Pictures begin as opaque black
    /// and are used again, so what it never writes stays black. Called on the reading thread.
    std::function<bool(ClipFrame&)> next;

    /// What the output shows for a frame: a picture that holds until the next call, or null for the stored
    /// frame as it is. Called on the thread that called runPipeline(), for frames that are not shown as well.
    std::function<CEffectImage*(const ClipFrame&)> picture;

    /// The output's time for a frame, in the sink's time base. Called on the writing thread.
    std::function<std::int64_t(const FramePlace&)> outputTime = [](const FramePlace& place) {
        return place.time;
    };
};

/// Reads, renders and writes all frames on three threads, shows progress, warns of damaged frames, completes
/// the sink, and tells where the time went if that was asked for. Throws what a stage throws, and when a stop
/// is asked; the sink is then incomplete.
void runPipeline(const ClipPipeline& pipeline);

} // namespace tool::media
