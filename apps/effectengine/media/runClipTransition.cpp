// transition between clips: one runs into the other, pictures and sound.
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/JoinedFeed.h"
#include "effectengine/media/encoders.h"
#include "effectengine/media/threeStages.h"
#include "pixels/rows.h"

#include <algorithm>
#include <cmath>

namespace media {

namespace {

/// Divides by all usual frame rates; for clips whose own unit is too coarse for another clip's times.
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

void join(const ClipTransitionOptions& options, const SessionOptions& sessionOptions)
{
    host::GraphDescription description;
    description.append(options.effect);
    description.finish();
    if (description.sources() != 2)
        throw ToolError(ExitCode::usage, "effect " + description.output + " is no transition");
    ClipReader first(options.from);
    ClipReader second(options.to);
    checkClipOutput(options.out);
    checkNotItself(options.from, options.out);
    checkNotItself(options.to, options.out);
    const pixels::Extent size = workingSize(first.info(), options.size);
    const double at = startOf(options, first.info());
    const AVRational unit = unitFor(first.info());
    const std::int64_t begin = std::llround(at / av_q2d(unit));
    const std::int64_t duration = std::llround(options.duration / av_q2d(unit));

    const Session session(sessionOptions);
    host::EffectGraph graph(description, unsigned(size.width), unsigned(size.height));
    FrameShape shape = shapeOf(first.info(), size.width, size.height);
    shape.timeBase = unit;
    const EncoderChoice choice = choiceOf(options.encoding);
    shape.keepsAlpha =
        keepsAlpha(options.encoding.alpha, encoderOf(options.out, choice), {&first.info(), &second.info()});
    const pixels::Extent secondSize =
        options.stretch ? size : shapedLike(second.info(), size, shape.sampleAspect);
    SideTracks tracks;
    if (!isPictureSequence(options.out))
        tracks = crossfadedTracks(
            options.from, options.to, at, options.duration, containerFor(options.out), options.out);
    const auto sink = openSink(options.out, shape, choice, std::move(tracks));
    warnOfDepth(first.info());
    warnOfDepth(second.info());

    std::vector<JoinedIn> ins(kFramesUnderWay);
    std::vector<FrameOut> outs(kFramesUnderWay);
    for (JoinedIn& in : ins) {
        in.first.emplace(unsigned(size.width), unsigned(size.height));
        in.second.emplace(unsigned(size.width), unsigned(size.height));
        pixels::rows::map(viewOf(*in.second), viewOf(*in.second), [](pixels::Bgra) -> pixels::Bgra {
            return {0, 0, 0, 255}; // what the second clip leaves free
        });
    }
    JoinedFeed feed(first, second, size, secondSize, unit, begin, duration);
    FromPicture toFrame(sink->format(), sink->colour(), shape.keepsAlpha);
    AlphaWarning firstWarning(first.info(), options.encoding.alpha, sink->format());
    AlphaWarning secondWarning(second.info(), options.encoding.alpha, sink->format());
    const double afterwards = std::max(0.0, second.info().duration - options.duration) * second.info().rate();
    Progress progress(options.encoding.progress, "frames",
        std::llround((at + options.duration) * first.info().rate() + afterwards));
    long long done = 0;
    long long number = 0;

    runThreeStages<JoinedIn, FrameOut>(ins, outs,
        {.produce = [&](JoinedIn& in) { return feed.next(in); },
            .process =
                [&](JoinedIn& in, FrameOut& out) {
                    stopIfAsked();
                    CEffectImage* result = in.first->handle();
                    if (in.part != JoinedIn::Part::second)
                        firstWarning.look(viewOf(*in.first));
                    if (in.part != JoinedIn::Part::first)
                        secondWarning.look(viewOf(*in.second));
                    if (in.part == JoinedIn::Part::second)
                        result = in.second->handle();
                    if (in.part == JoinedIn::Part::both) {
                        graph.setSource(*in.first, 0);
                        graph.setSource(*in.second, 1);
                        result = graph.run({.seconds = double(in.time - begin) * av_q2d(unit),
                            .frameRate = first.info().rate(),
                            .total = options.duration});
                    }
                    toFrame.convert(viewOf(result), *out.frame);
                    out.place = {.number = number++, .time = in.time, .duration = in.duration};
                    return true;
                },
            .consume =
                [&](FrameOut& out) {
                    out.frame->pts = out.place.time;
                    sink->write(*out.frame, out.place.number, out.place.duration);
                    progress.report(++done);
                }});
    warnOfDamage(first);
    warnOfDamage(second);
    stopIfAsked();
    sink->finish();
    progress.finish();
}

} // namespace

} // namespace media

void runClipTransition(const ClipTransitionOptions& options, const SessionOptions& session)
{
    media::DecoderWatch::listen();
    interruptibly([&] { media::join(options, session); });
}
