// The three stages between a verb's feed and its sink.
#include "effectengine/media/clipPipeline.h"

#include "effectengine/interruption.h"
#include "effectengine/media/PictureConversion.h"
#include "effectengine/media/StageTimes.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/threeStages.h"
#include "effectengine/media/transparency.h"
#include "hosting/imageView.h"

namespace tool::media {

namespace {

/// A frame on its way to the sink.
struct FinishedFrame {
    Frame frame = makeFrame();
    FramePlace place;
};

/// Frames before and after the effects: enough of each to keep the stages busy, few enough to stay small.
constexpr std::size_t kFramesUnderWay = 4;

std::vector<ClipFrame> framesFor(const ClipPipeline& pipeline)
{
    std::vector<ClipFrame> frames(kFramesUnderWay);
    for (ClipFrame& frame : frames) {
        while (frame.pictures.size() < pipeline.clips.size() + pipeline.companions.size())
            blacken(viewOf(
                frame.pictures.emplace_back(unsigned(pipeline.size.width), unsigned(pipeline.size.height))));
    }
    return frames;
}

} // namespace

void runPipeline(const ClipPipeline& pipeline)
{
    std::vector<ClipFrame> read = framesFor(pipeline);
    std::vector<FinishedFrame> finished(kFramesUnderWay);
    FromPicture convert(pipeline.sink.format(), pipeline.sink.colour(), pipeline.keepsAlpha);
    std::vector<AlphaWarning> alphaWarnings;
    for (const ClipReader* const clip : pipeline.clips)
        alphaWarnings.emplace_back(clip->info(), pipeline.alpha, pipeline.sink.format());
    Progress progress(pipeline.report.progress, "frames", pipeline.expectedFrames);
    const auto decoding = [&] {
        StageTimes::Duration sum{};
        for (const ClipReader* const clip : pipeline.clips)
            sum += clip->decoding();
        for (const ClipReader* const clip : pipeline.companions)
            sum += clip->decoding();
        return sum;
    };
    const RunReport report;
    StageTimes times{.decode = -decoding()};
    long long done = 0;
    pipeline.sink.whenWritten([&] { progress.report(++done); });

    // The reading thread need not notice that another one failed, while it waits for a pipe.
    const auto orAbandon = [&](const auto& work) {
        try {
            return work();
        } catch (...) {
            for (const ClipReader* const clip : pipeline.clips)
                clip->abandon();
            throw;
        }
    };
    const auto render = [&](ClipFrame& in, FinishedFrame& out) {
        stopIfAsked();
        for (std::size_t clip = 0; in.shown && clip < pipeline.clips.size(); ++clip)
            if (in.present[clip])
                alphaWarnings[clip].look(viewOf(in.pictures[clip]));
        CEffectImage* const picture = timed(times.effects, [&] { return pipeline.picture(in); });
        if (!in.shown)
            return false;
        if (picture) {
            timed(times.convert, [&] { convert.convert(host::viewOf(picture), *out.frame); });
        } else {
            av_frame_unref(out.frame.get());
            av_frame_move_ref(out.frame.get(), in.frame.get());
        }
        out.place = in.place;
        return true;
    };
    const auto write = [&](FinishedFrame& out) {
        out.frame->pts = pipeline.outputTime(out.place);
        timed(times.write, [&] { pipeline.sink.write(*out.frame, out.place); });
    };
    const auto next = [&](ClipFrame& in) { return timed(times.read, [&] { return pipeline.next(in); }); };
    runThreeStages<ClipFrame, FinishedFrame>(read, finished,
        {.produce = next,
            .process = [&](ClipFrame& in,
                           FinishedFrame& out) { return orAbandon([&] { return render(in, out); }); },
            .consume = [&](FinishedFrame& out) { orAbandon([&] { write(out); }); }});
    times.decode += decoding();

    for (const ClipReader* const clip : pipeline.clips)
        warnOfDamage(*clip);
    for (const ClipReader* const clip : pipeline.companions)
        warnOfDamage(*clip);
    stopIfAsked();
    timed(times.write, [&] { pipeline.sink.finish(); });
    progress.finish();
    if (pipeline.report.stats)
        report.print(times, done, pipeline.report.progress);
}

} // namespace tool::media
