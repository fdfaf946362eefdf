// transition between clips: pictures and sound of one clip run into those of another.
#include "effectengine/GraphOptions.h"
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/JoinedFeed.h"
#include "effectengine/media/clipPipeline.h"
#include "effectengine/media/clipPlan.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/encoders.h"
#include "effectengine/media/transparency.h"
#include "effectengine/media/workingSize.h"

#include <algorithm>
#include <cmath>

namespace tool::media {

namespace {

/// A unit of times that all usual frame rates divide, for clips whose own unit is too coarse.
constexpr AVRational kFineUnit{1, 90000};

AVRational unitFor(const ClipInfo& first)
{
    constexpr int kFineEnough = 1000;
    return first.timeBase.den / std::max(1, first.timeBase.num) >= kFineEnough ? first.timeBase : kFineUnit;
}

std::string seconds(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3g s", value);
    return text;
}

double startOf(const ClipTransitionOptions& options, const ClipInfo& first)
{
    const bool picture = first.frames <= 1;
    const double length = picture ? 0 : first.duration;
    if (!options.at)
        return std::max(0.0, length - options.duration);
    if (!picture && *options.at > length)
        throw ToolError(ExitCode::usage,
            "--at " + seconds(*options.at) + ": " + first.file.string() + " ends at " + seconds(length));
    return *options.at;
}

/// @param at  when the second clip begins, in seconds
long long expectedFrames(const ClipInfo& first, const ClipInfo& second, double at, double duration)
{
    const double afterwards = std::max(0.0, second.duration - duration) * second.rate();
    return std::llround((at + duration) * first.rate() + afterwards);
}

SideTracks tracksFor(const ClipTransitionOptions& options, const EncoderChoice& choice, double at)
{
    if (isPictureSequence(options.out))
        return {};
    return crossfadedTracks(options.from, options.to, at, options.duration,
        containerFor(options.out, choice.container), outputName(options.out));
}

void printPlan(const ClipTransitionOptions& options, const Look& look, ClipReader& first, ClipReader& second,
    double at, pixels::Extent size, const EncoderChoice& choice)
{
    RunPlan plan("transition");
    plan.setLook(look);
    plan.setFact("at", at);
    plan.setFact("duration", options.duration);
    PlannedStep step;
    step.reads = {plannedInput(first), plannedInput(second)};
    PlannedFile& out = step.writes.emplace_back(
        PlannedFile{options.out, PictureSize{unsigned(size.width), unsigned(size.height)}});
    out.facts.emplace_back("container", containerFor(options.out, choice.container).name);
    out.facts.emplace_back("codec", encoderOf(options.out, choice).name);
    if (!goesToPipe(options.out))
        step.action = actionFor(options.out);
    plan.add(std::move(step));
    print(plan, options.dryRun);
}

void join(const ClipTransitionOptions& options, const SessionOptions& sessionOptions)
{
    const Look look = transitionLook(options.effect, options.parameters);
    EncoderChoice choice = choiceOf(options.encoding);
    checkClipOutput(options.out, choice.container);
    for (const auto* const file : {&options.from, &options.to})
        if (ClipSource(*file).passesOnce())
            throw ToolError(ExitCode::usage, "transition takes files, whose lengths are known, not a pipe");
    ClipReader first(options.from, options.depth);
    ClipReader second(options.to, options.depth);
    checkNotItself(options.from, options.out);
    checkNotItself(options.to, options.out);
    const pixels::Extent size = workingSize(first.info(), options.size);
    const double at = startOf(options, first.info());
    settleChoice(choice, options.out, options.encoding.alpha, {&first.info(), &second.info()});
    if (options.dryRun.wanted)
        return printPlan(options, look, first, second, at, size, choice);
    const AVRational unit = unitFor(first.info());
    const std::int64_t begin = std::llround(at / av_q2d(unit));
    const std::int64_t duration = std::llround(options.duration / av_q2d(unit));

    const Session session(sessionOptions);
    LookRun run(look, unsigned(size.width), unsigned(size.height));
    FrameShape shape = shapeOf(first.info(), size.width, size.height);
    shape.timeBase = unit;
    shape.keepsAlpha =
        keepsAlpha(options.encoding.alpha, encoderOf(options.out, choice), {&first.info(), &second.info()});
    const pixels::Extent secondSize =
        options.stretch ? size : shapedLike(second.info(), size, shape.sampleAspect);
    const auto sink = openSink(options.out, shape, choice, tracksFor(options, choice, at));
    warnOfDepth(first.info());
    warnOfDepth(second.info());

    JoinedFeed feed(first, second, size, secondSize, unit, begin, duration);
    const auto picture = [&](const ClipFrame& frame) {
        if (!frame.present[0] || !frame.present[1])
            return frame.pictures[frame.present[0] ? 0 : 1].handle();
        run.setSource(frame.pictures[0], 0);
        run.setSource(frame.pictures[1], 1);
        return run.run({.seconds = double(frame.place.time - begin) * av_q2d(unit),
            .frameRate = first.info().rate(),
            .total = options.duration});
    };
    runPipeline({.clips = {&first, &second},
        .sink = *sink,
        .size = size,
        .alpha = options.encoding.alpha,
        .keepsAlpha = shape.keepsAlpha,
        .report = options.encoding.report,
        .expectedFrames = expectedFrames(first.info(), second.info(), at, options.duration),
        .next = [&](ClipFrame& frame) { return feed.next(frame); },
        .picture = picture});
}

} // namespace

} // namespace tool::media

namespace tool {

void runClipTransition(const ClipTransitionOptions& options, const SessionOptions& session)
{
    media::DecoderWatch::listen();
    interruptibly([&] { media::join(options, session); });
}

} // namespace tool
