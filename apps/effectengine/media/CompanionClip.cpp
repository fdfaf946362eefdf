// The choice of a companion's frames by time, and its end.
#include "effectengine/media/CompanionClip.h"

#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/ClipSink.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/workingSize.h"
#include "hosting/imageView.h"
#include "pixels/rows.h"

#include <cmath>

namespace tool::media {

namespace {

/// Absorbs the rounding of calculations in floating point; far below the time of a frame.
constexpr double kTiny = 1e-6;

ClipSource sourceOfCompanion(const std::filesystem::path& file, const std::string& pictureRate)
{
    const ClipSource source(file, pictureRate);
    if (source.passesOnce())
        throw ToolError(ExitCode::usage, "--with takes a file, which can be sought in, not a pipe");
    return source;
}

} // namespace

CompanionClip::CompanionClip(const std::filesystem::path& file, const CompanionOptions& options,
    const std::string& pictureRate, const DepthOptions& depth, pixels::Extent size, AVRational pixelAspect)
    : reader_(sourceOfCompanion(file, pictureRate), depth),
      end_(options.end),
      size_(size),
      part_(options.stretch ? size : shapedLike(reader_.info(), size, pixelAspect)),
      convert_(reader_.info(), part_.width, part_.height),
      picture_(std::size_t(size.width) * std::size_t(size.height) * 4)
{
    blacken(picture());
}

double CompanionClip::secondsOf(const AVFrame& frame) const
{
    return double(frame.pts - reader_.firstTime()) * av_q2d(reader_.info().timeBase);
}

double CompanionClip::endOf(const AVFrame& frame) const
{
    const double duration = double(frame.pkt_duration) * av_q2d(reader_.info().timeBase);
    return secondsOf(frame) + (duration > 0 ? duration : 1 / reader_.info().rate());
}

// Makes the frame ahead the one that is shown.
void CompanionClip::advance()
{
    stopIfAsked();
    std::swap(shown_, ahead_);
    shownNumber_ = aheadNumber_;
    hasAhead_ = reader_.next(*ahead_);
    aheadNumber_ = reader_.index();
}

void CompanionClip::begin()
{
    advance();
    advance(); // shows its first frame until the next one's time has come
}

void CompanionClip::beginAt(double seconds)
{
    const ClipInfo& clip = reader_.info();
    const FrameTable& table = reader_.table();
    if (table.numbers) {
        const double unit = av_q2d(clip.timeBase);
        const std::int64_t first = table.times.front();
        length_ = double(table.times.back() - first) * unit
            + (table.lastDuration > 0 ? double(table.lastDuration) * unit : 1 / clip.rate());
        if (end_ == ClipEnd::loop)
            loops_ = (long long)(std::floor(seconds / length_));
        reader_.skipTo(
            table.at(first + std::int64_t(std::floor((seconds - double(loops_) * length_) / unit))));
    }
    begin();
    rounding_ = roundingOf(clip.timeBase, clip.frameRate, reader_.firstTime());
    begun_ = true;
}

void CompanionClip::goTo(double seconds)
{
    if (!begun_)
        beginAt(seconds);
    while (true) {
        const double time = seconds + rounding_ + kTiny;
        while (hasAhead_ && secondsOf(*ahead_) <= time - double(loops_) * length_)
            advance();
        if (hasAhead_ || isStill())
            return;
        if (length_ == 0)
            length_ = endOf(*shown_);
        black_ = end_ == ClipEnd::black && time >= length_;
        const auto loops = (long long)(std::floor(time / length_));
        if (end_ != ClipEnd::loop || loops == loops_)
            return;
        loops_ = loops;
        reader_.startAgain();
        begin();
    }
}

void CompanionClip::show(double seconds, pixels::View to)
{
    goTo(seconds);
    if (black_) {
        blacken(to);
        return;
    }
    if (drawn_ != shownNumber_) {
        const int left = (size_.width - part_.width) / 2;
        const int bottom = (size_.height - part_.height) / 2;
        convert_.convert(*shown_, picture().part(left, bottom, part_));
        drawn_ = shownNumber_;
    }
    pixels::rows::copy(picture(), to);
}

CompanionClips::CompanionClips(const CompanionOptions& options, const DepthOptions& depth,
    const ClipInfo& first, pixels::Extent size, const std::string& pictureRate)
{
    const AVRational pixelAspect = shapeOf(first, size.width, size.height).sampleAspect;
    for (const std::filesystem::path& file : options.files) {
        CompanionClip& clip = clips_.emplace_back(file, options, pictureRate, depth, size, pixelAspect);
        warnOfDepth(clip.reader().info());
    }
}

std::vector<ClipReader*> CompanionClips::readers()
{
    std::vector<ClipReader*> readers;
    for (CompanionClip& clip : clips_)
        readers.push_back(&clip.reader());
    return readers;
}

void CompanionClips::show(ClipFrame& frame, double seconds)
{
    for (std::size_t i = 0; i < clips_.size(); ++i) {
        clips_[i].show(seconds, viewOf(frame.pictures[i + 1]));
        frame.place.damaged = frame.place.damaged || clips_[i].damaged();
    }
}

double roundingOf(AVRational unit, AVRational frameRate, std::int64_t firstTime)
{
    const std::int64_t period = std::int64_t(frameRate.den) * unit.den;
    if (period % (std::int64_t(frameRate.num) * unit.num) == 0)
        return 0;
    return av_q2d(unit) * (firstTime == 0 ? 0.5 : 1);
}

std::string pictureRateBeside(AVRational clipRate, const std::string& chosen)
{
    return chosen.empty() ? std::to_string(clipRate.num) + "/" + std::to_string(clipRate.den) : chosen;
}

void checkClipCount(
    unsigned sources, const CompanionOptions& options, const std::string& graph, const char* verb)
{
    const std::size_t clips = options.files.size() + 1;
    if (sources == clips)
        return;
    throw ToolError(ExitCode::usage,
        graph + " needs " + std::to_string(sources) + (sources == 1 ? " clip; " : " clips; ") + verb + " has "
            + std::to_string(clips) + (options.files.empty() ? " (--with names a second one)" : ""));
}

} // namespace tool::media
