// Reading of --frames, --start, --end and --chunk.
#include "effectengine/media/FrameRange.h"

#include "effectengine/ToolError.h"
#include "effectengine/media/CompanionClip.h"

#include <algorithm>
#include <charconv>

namespace tool::media {

namespace {

bool readNumber(std::string_view& text, long long& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(std::size_t(end - text.data()));
    return error == std::errc() && number >= 0;
}

bool readMark(std::string_view& text, char mark)
{
    if (!text.starts_with(mark))
        return false;
    text.remove_prefix(1);
    return true;
}

double parseTime(const std::string& text, const char* option)
{
    constexpr double kSixty = 60;
    double seconds = 0;
    int fields = 0;
    bool good = !text.empty();
    for (std::string_view rest = text; good; ++fields) {
        double field = 0;
        const auto [end, error] =
            std::from_chars(rest.data(), rest.data() + rest.size(), field, std::chars_format::fixed);
        rest.remove_prefix(std::size_t(end - rest.data()));
        good = error == std::errc() && field >= 0 && (fields == 0 || field < kSixty) && fields < 3;
        seconds = seconds * kSixty + field;
        if (rest.empty())
            break;
        good = good && readMark(rest, ':') && field == double((long long)(field));
    }
    if (!good)
        throw ToolError(ExitCode::usage,
            std::string(option) + " takes seconds or [HH:]MM:SS, with a fraction or without, not \"" + text
                + "\"");
    return seconds;
}

// The numbers of the frames at these times.
FrameRange framesAt(const TimeRange& times, ClipReader& reader)
{
    const FrameTable& table = reader.table();
    const ClipInfo& clip = reader.info();
    if (table.times.empty() || table.times.front() == AV_NOPTS_VALUE)
        throw ToolError(ExitCode::unreadable, clip.file.string() + " tells no times; choose by --frames");
    const auto numberAt = [&](double seconds) {
        const auto isBefore = [&](std::int64_t time) {
            return !isAtOrAfter(time, table.times.front(), clip, seconds);
        };
        return (long long)(std::ranges::partition_point(table.times, isBefore) - table.times.begin());
    };
    const bool open = times.end == std::numeric_limits<double>::infinity();
    return {numberAt(times.start), open ? FrameRange::kOpen : numberAt(times.end) - 1};
}

} // namespace

bool isAtOrAfter(std::int64_t time, std::int64_t first, const ClipInfo& clip, double seconds)
{
    constexpr double kTiny = 1e-6; // decimal fractions are cut somewhere
    const double shown = double(time - first) * av_q2d(clip.timeBase);
    return shown + roundingOf(clip.timeBase, clip.frameRate, first) + kTiny >= seconds;
}

TimeRange parseTimes(const std::string& start, const std::string& end)
{
    TimeRange times;
    if (!start.empty())
        times.start = parseTime(start, "--start");
    if (!end.empty())
        times.end = parseTime(end, "--end");
    if (times.end <= times.start)
        throw ToolError(
            ExitCode::usage, "--end " + end + " is not after --start " + (start.empty() ? "0" : start));
    return times;
}

void throwNoFrames(const InputOptions& options, ClipReader& reader, long long frames)
{
    const std::string part = !options.frames.empty() ? "--frames " + options.frames
        : options.end.empty()                        ? "--start " + options.start
        : options.start.empty()                      ? "--end " + options.end
                                                     : "--start " + options.start + " --end " + options.end;
    throw ToolError(ExitCode::usage,
        part + ": no such part, " + reader.info().file.string() + " has " + std::to_string(frames)
            + " frames");
}

ClipPart partOf(const InputOptions& options, ClipReader& reader)
{
    ClipPart part{parseFrames(options.frames), parseTimes(options.start, options.end)};
    if (part.whole() || reader.info().source.passesOnce())
        return part;
    if (!part.times.whole()) {
        part.frames = framesAt(part.times, reader);
        part.times = {};
    }
    const long long count = reader.table().count();
    if (part.frames.first >= count || part.frames.last < part.frames.first)
        throwNoFrames(options, reader, count);
    return part;
}

FrameRange parseFrames(const std::string& text)
{
    FrameRange range;
    if (text.empty())
        return range;
    std::string_view rest = text;
    bool good = readNumber(rest, range.first);
    if (good && rest.empty())
        range.last = range.first;
    else if (good)
        good = readMark(rest, '-') && (rest.empty() || (readNumber(rest, range.last) && rest.empty()));
    if (!good || range.last < range.first)
        throw ToolError(ExitCode::usage, "--frames takes A-B, A- or A, counted from 0, not \"" + text + "\"");
    return range;
}

FrameRange parseChunk(const std::string& text, long long frames)
{
    std::string_view rest = text;
    long long part = 0;
    long long parts = 0;
    if (!readNumber(rest, part) || !readMark(rest, '/') || !readNumber(rest, parts) || !rest.empty()
        || part < 1 || part > parts)
        throw ToolError(ExitCode::usage, "--chunk takes I/N with 1 <= I <= N, not \"" + text + "\"");
    if (parts > frames)
        throw ToolError(
            ExitCode::usage, "--chunk " + text + ": the clip has only " + std::to_string(frames) + " frames");
    return {frames * (part - 1) / parts, frames * part / parts - 1};
}

} // namespace tool::media
