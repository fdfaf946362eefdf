// video: a clip through a graph of effects into another clip.
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/CompanionClip.h"
#include "effectengine/media/FrameFeed.h"
#include "effectengine/media/PassingTracks.h"
#include "effectengine/media/clipPipeline.h"
#include "effectengine/media/clipPlan.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/encoders.h"
#include "effectengine/media/followSound.h"
#include "effectengine/media/totalTime.h"
#include "effectengine/media/transparency.h"
#include "effectengine/media/workingSize.h"
#include "effectengine/media/yuvPixels.h"

#include <algorithm>
#include <utility>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

/// The times of the output's frames: those of the clip, or of the clip that numbered pictures were made from.
class Timing {
public:
    Timing(const VideoOptions& options, ClipReader& reader, const ClipPart& part, const Look* look)
        : source_(reader.info().source),
          start_(reader.info().start),
          unit_(reader.info().timeBase),
          rate_(reader.info().frameRate),
          origin_(start_),
          duration_(reader.info().duration)
    {
        if (!options.timing.empty())
            takeTimes(options);
        else if (!part.whole() && !source_.passesOnce())
            cut(reader, part.frames);
        duration_ = totalTime(options.input, duration_, look);
    }

    /// Where the sound comes from.
    const ClipSource& source() const { return source_; }
    bool isOfOtherClip() const { return !times_.empty(); }
    AVRational unit() const { return unit_; }
    AVRational rate() const { return rate_; }
    Span span() const { return span_; }

    /// Begins the output with a frame of a clip that passes once. To be called before timeOf() for it.
    /// @return its time in seconds since the clip's start
    double beginAt(const FramePlace& place)
    {
        origin_ = place.time;
        return double(origin_ - start_) * av_q2d(unit_);
    }

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
                source_.name().string() + " has only " + std::to_string(times_.size())
                    + " frames, the pictures more");
        return times_[std::size_t(place.number)];
    }

    std::int64_t firstTimeOf(const FramePlace& place) const
    {
        return times_.empty() ? place.time - place.sinceFirst : times_.front();
    }

    void takeTimes(const VideoOptions& options)
    {
        source_ = options.timing;
        if (source_.passesOnce())
            throw ToolError(
                ExitCode::usage, "--timing takes a file, whose times are read beforehand, not a pipe");
        const ClipReader clip(source_);
        times_ = readFrameTable(source_).times;
        unit_ = clip.info().timeBase;
        rate_ = clip.info().frameRate;
        origin_ = start_ = clip.info().start;
        duration_ = clip.info().duration;
    }

    void cut(ClipReader& reader, const FrameRange& range)
    {
        const FrameTable& table = reader.table();
        const long long count = table.count();
        const auto seconds = [&](std::int64_t time) { return double(time - start_) * av_q2d(unit_); };
        origin_ = table.times[std::size_t(range.first)];
        span_.from = seconds(origin_);
        if (range.last < count - 1)
            span_.to = seconds(table.times[std::size_t(range.last) + 1]);
        else
            span_.to = seconds(table.times.back() + table.lastDuration);
    }

    ClipSource source_;
    std::int64_t start_; ///< of the source
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

/// The sound and the subtitles of the output.
class Accompaniment {
public:
    /// @param name  of the output
    Accompaniment(ClipReader& reader, Timing& timing, const ClipPart& part, const AVOutputFormat& container,
        const fs::path& name)
        : reader_(reader),
          timing_(timing),
          part_(part)
    {
        if (isPictureSequence(timing.source().file) || timing.source().isRaw())
            return;
        if (timing.source().passesOnce())
            passing_.emplace(reader, container, name);
        else
            tracks_ = tracksOf(timing.source().path(), container, timing.span(), name);
    }

    /// To be asked for once.
    SideTracks tracks() { return passing_ ? passing_->tracks() : std::move(tracks_); }

    /// To be called with each frame that is shown, on the reading thread.
    void goWith(const FramePlace& place)
    {
        if (!std::exchange(begun_, true) && !timing_.isOfOtherClip() && reader_.info().source.passesOnce())
            begin(place);
        lastDuration_ = place.duration;
    }

    /// To be called after the last frame that is shown, on the reading thread.
    /// @param readBeyond  whether the reader is one frame further
    void end(bool readBeyond)
    {
        if (!passing_)
            return;
        if (!part_.whole())
            readUpToEnd(readBeyond);
        passing_->close();
    }

private:
    void begin(const FramePlace& place)
    {
        const double start = part_.whole() ? 0 : timing_.beginAt(place);
        if (passing_)
            passing_->beginAt(start, start > 0);
    }

    // Sound may lie a little behind its pictures.
    void readUpToEnd(bool readBeyond)
    {
        constexpr double kFurthestBehind = 5;
        const Frame frame = makeFrame();
        const bool ends = !readBeyond && !reader_.next(*frame);
        const double end = reader_.secondsSinceStart()
            + (ends ? double(lastDuration_) * av_q2d(reader_.info().timeBase) : 0);
        passing_->endAt(end);
        while (!ends && !passing_->complete() && reader_.secondsSinceStart() < end + kFurthestBehind
            && reader_.next(*frame))
            stopIfAsked();
    }

    ClipReader& reader_;
    Timing& timing_;
    ClipPart part_;
    SideTracks tracks_;
    std::optional<PassingTracks> passing_;
    std::int64_t lastDuration_ = 0;
    bool begun_ = false;
};

void printPlan(const VideoOptions& options, const std::optional<Look>& look, ClipReader& reader,
    CompanionClips& companions, const ClipPart& part, pixels::Extent size, const EncoderChoice& choice)
{
    RunPlan plan("video");
    if (look)
        plan.setLook(*look);
    PlannedStep step = plannedStep(reader, companions);
    if (!options.timing.empty())
        step.reads.push_back({options.timing, {}});
    PlannedFile& out = step.writes.emplace_back(plannedOutput(options.out, part, size));
    out.facts.emplace_back("container", containerFor(options.out, choice.container).name);
    out.facts.emplace_back("codec", encoderOf(options.out, choice).name);
    if (!goesToPipe(options.out))
        step.action = actionFor(options.out);
    plan.add(std::move(step));
    print(plan, options.dryRun);
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
    EncoderChoice choice = choiceOf(options.encoding);
    checkClipOutput(options.out, choice.container);
    const std::string wantedSize = outputSizeOf(options.input);
    ClipReader reader(sourceOf(options.input), options.depth);
    const ClipInfo& clip = reader.info();
    checkNotItself(clip.source.path(), options.out);
    for (const fs::path& file : options.companions.files)
        checkNotItself(file, options.out);
    const pixels::Extent size = workingSize(clip, wantedSize);
    const ClipPart part = partOf(options.input, reader);
    Timing timing(options, reader, part, look ? &*look : nullptr);
    CompanionClips companions(
        options.companions, options.depth, clip, size, pictureRateBeside(timing.rate(), options.input.rate));

    settleChoice(choice, options.out, options.encoding.alpha, {&clip});
    if (options.dryRun.wanted)
        return printPlan(options, look, reader, companions, part, size, choice);

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
    const AVOutputFormat& container = containerFor(options.out, choice.container);
    std::optional<Accompaniment> accompaniment;
    if (!isPictureSequence(options.out))
        accompaniment.emplace(reader, timing, part, container, outputName(options.out));
    const auto sink =
        openSink(options.out, shape, choice, accompaniment ? accompaniment->tracks() : SideTracks());
    warnOfDepth(clip);

    FrameFeed feed(reader, size, part, look ? look->info().preRoll : 0);
    const auto picture = [&](const ClipFrame& frame) -> CEffectImage* {
        if (!run)
            return goesStraight(*frame.frame, clip, size, *sink) ? nullptr : frame.pictures.front().handle();
        for (unsigned i = 0; i < frame.pictures.size(); ++i)
            run->setSource(frame.pictures[i], i);
        return run->run(timing.frameTime(frame.place));
    };
    bool anyShown = false;
    const auto next = [&](ClipFrame& frame) {
        if (!feed.next(frame)) {
            if (!anyShown)
                throwNoFrames(options.input, reader, reader.index() + 1);
            if (accompaniment)
                accompaniment->end(feed.readBeyond());
            return false;
        }
        anyShown = anyShown || frame.shown;
        if (frame.shown && accompaniment)
            accompaniment->goWith(frame.place);
        companions.show(frame, timing.frameTime(frame.place).seconds + timing.rounding(frame.place));
        return true;
    };
    runPipeline({.clips = {&reader},
        .sink = *sink,
        .size = size,
        .alpha = options.encoding.alpha,
        .keepsAlpha = shape.keepsAlpha,
        .report = options.encoding.report,
        .expectedFrames = part.times.whole() ? expectedFrames(clip, part.frames) : 0,
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
        look = graph.look({}, !options.dryRun.wanted);
    interruptibly([&] { media::convertClip(options, look, session); });
}

} // namespace tool
