// video: a clip through a graph of effects into another clip.
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/CompanionClip.h"
#include "effectengine/media/FrameFeed.h"
#include "effectengine/media/clipPipeline.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/encoders.h"
#include "effectengine/media/followSound.h"
#include "effectengine/media/transparency.h"
#include "effectengine/media/workingSize.h"
#include "effectengine/media/yuvPixels.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

/// The times of the output's frames: those of the clip, or of the clip that numbered pictures were made from.
class Timing {
public:
    Timing(const VideoOptions& options, ClipReader& reader, const FrameRange& range)
        : source_(options.timing.empty() ? options.in : options.timing),
          unit_(reader.info().timeBase),
          rate_(reader.info().frameRate),
          origin_(reader.info().start),
          duration_(reader.info().duration)
    {
        if (!options.timing.empty())
            takeTimes(options);
        else if (!range.whole())
            cut(options, reader, range);
    }

    const fs::path& source() const { return source_; }
    AVRational unit() const { return unit_; }
    AVRational rate() const { return rate_; }
    Span span() const { return span_; }

    std::int64_t timeOf(const FramePlace& place) const { return clipTimeOf(place) - origin_; }

    /// The time that effects see.
    FrameTime frameTime(const FramePlace& place) const
    {
        return {.seconds = double(clipTimeOf(place) - firstTimeOf(place)) * av_q2d(unit_),
            .frameRate = av_q2d(rate_),
            .total = duration_};
    }

    /// How far frameTime() may be off, in seconds.
    double rounding(const FramePlace& place) const { return roundingOf(unit_, rate_, firstTimeOf(place)); }

private:
    std::int64_t clipTimeOf(const FramePlace& place) const
    {
        if (times_.empty())
            return place.time;
        if (place.number >= (long long)(times_.size()))
            throw ToolError(ExitCode::usage,
                source_.string() + " has only " + std::to_string(times_.size())
                    + " frames, the pictures more");
        return times_[std::size_t(place.number)];
    }

    std::int64_t firstTimeOf(const FramePlace& place) const
    {
        return times_.empty() ? place.time - place.sinceFirst : times_.front();
    }

    void takeTimes(const VideoOptions& options)
    {
        const ClipReader clip(options.timing);
        times_ = readFrameTable(options.timing).times;
        unit_ = clip.info().timeBase;
        rate_ = clip.info().frameRate;
        origin_ = clip.info().start;
        duration_ = clip.info().duration;
    }

    void cut(const VideoOptions& options, ClipReader& reader, const FrameRange& range)
    {
        const FrameTable& table = reader.table();
        const long long count = table.count();
        const std::int64_t start = reader.info().start;
        if (range.first >= count)
            throw ToolError(ExitCode::usage,
                "--frames " + options.frames + ": " + options.in.string() + " has " + std::to_string(count)
                    + " frames");
        const auto seconds = [&](std::int64_t time) { return double(time - start) * av_q2d(unit_); };
        origin_ = table.times[std::size_t(range.first)];
        span_.from = seconds(origin_);
        if (range.last < count - 1)
            span_.to = seconds(table.times[std::size_t(range.last) + 1]);
        else
            span_.to = seconds(table.times.back() + table.lastDuration);
    }

    fs::path source_;
    AVRational unit_;
    AVRational rate_;
    std::int64_t origin_;
    double duration_;
    Span span_;
    std::vector<std::int64_t> times_;
};

long long expectedFrames(const ClipInfo& clip, const FrameRange& range)
{
    if (clip.frames <= 0)
        return 0;
    return std::max(0LL, std::min(clip.frames - 1, range.last) - range.first + 1);
}

SideTracks tracksFor(const VideoOptions& options, const Timing& timing)
{
    if (isPictureSequence(options.out) || isPictureSequence(timing.source()))
        return {};
    return tracksOf(timing.source(), containerFor(options.out), timing.span(), options.out);
}

/// Whether a frame without effects can be written as it is stored: it has the encoder's form already.
bool goesStraight(const AVFrame& frame, const ClipInfo& clip, pixels::Extent size, const ClipSink& sink)
{
    return clip.orientation.upright() && !clip.isToneMapped() && frame.format == sink.format()
        && frame.width == size.width && frame.height == size.height
        && isPlainYuv(AVPixelFormat(frame.format));
}

void convertClip(
    const VideoOptions& options, const std::optional<Look>& look, const SessionOptions& sessionOptions)
{
    checkClipCount(look ? look->info().inputs : 1, options.companions, "the graph", "video");
    const FrameRange range = parseFrames(options.frames);
    const EncoderChoice choice = choiceOf(options.encoding);
    ClipReader reader(options.in, options.pictureRate, options.depth);
    const ClipInfo& clip = reader.info();
    checkClipOutput(options.out);
    checkNotItself(options.in, options.out);
    for (const fs::path& file : options.companions.files)
        checkNotItself(file, options.out);
    const pixels::Extent size = workingSize(clip, options.size);
    const Timing timing(options, reader, range);
    CompanionClips companions(
        options.companions, options.depth, clip, size, pictureRateBeside(timing.rate(), options.pictureRate));

    const Session session(sessionOptions);
    std::optional<LookRun> run;
    if (look) {
        run.emplace(*look, unsigned(size.width), unsigned(size.height));
        followSound(*run, *look, timing.source());
    }

    FrameShape shape = shapeOf(clip, size.width, size.height);
    shape.timeBase = timing.unit();
    shape.frameRate = timing.rate();
    shape.keepsAlpha = keepsAlpha(options.encoding.alpha, encoderOf(options.out, choice), {&clip});
    const auto sink = openSink(options.out, shape, choice, tracksFor(options, timing));
    warnOfDepth(clip);

    FrameFeed feed(reader, size, range, look ? look->info().preRoll : 0);
    const auto picture = [&](const ClipFrame& frame) -> CEffectImage* {
        if (!run)
            return goesStraight(*frame.frame, clip, size, *sink) ? nullptr : frame.pictures.front().handle();
        for (unsigned i = 0; i < frame.pictures.size(); ++i)
            run->setSource(frame.pictures[i], i);
        return run->run(timing.frameTime(frame.place));
    };
    const auto next = [&](ClipFrame& frame) {
        if (!feed.next(frame))
            return false;
        companions.show(frame, timing.frameTime(frame.place).seconds + timing.rounding(frame.place));
        return true;
    };
    runPipeline({.clips = {&reader},
        .sink = *sink,
        .size = size,
        .alpha = options.encoding.alpha,
        .keepsAlpha = shape.keepsAlpha,
        .report = options.encoding.report,
        .expectedFrames = expectedFrames(clip, range),
        .companions = companions.readers(),
        .next = next,
        .picture = picture,
        .outputTime = [&](const FramePlace& place) { return timing.timeOf(place); }});
}

} // namespace

} // namespace tool::media

namespace tool {

void runVideo(const VideoOptions& options, const GraphOptions& graph, const SessionOptions& session)
{
    media::DecoderWatch::listen();
    std::optional<Look> look;
    if (graph.given())
        look = graph.look();
    interruptibly([&] { media::convertClip(options, look, session); });
}

} // namespace tool
