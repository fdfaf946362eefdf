// Reading of --frames and --chunk.
#include "effectengine/media/FrameRange.h"

#include "effectengine/ToolError.h"

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

} // namespace

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
