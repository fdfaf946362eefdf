// Which sound goes along, and how.
#include "effectengine/media/openClip.h"
#include "effectengine/media/CopiedTrack.h"
#include "effectengine/media/EncodedTrack.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace fs = std::filesystem;

namespace media {

namespace {

constexpr const char* kMixedRate = "48000";

bool holds(const AVOutputFormat& container, AVCodecID codec)
{
    return avformat_query_codec(&container, codec, FF_COMPLIANCE_NORMAL) == 1;
}

void warn(const fs::path& file, const std::string& what)
{
    std::fprintf(stderr, "effectengine: warning: %s: %s\n", file.c_str(), what.c_str());
}

std::string number(double seconds) { return std::to_string(std::llround(seconds * 1e6)) + "us"; }

AVFilterContext* then(AVFilterContext* from, AVFilterContext* to)
{
    connect(from, to);
    return to;
}

// One stream of a file as samples; time 0 is the file's start.
AVFilterContext* samplesOf(AVFilterGraph& graph, const fs::path& clip, int stream, double start)
{
    AVFilterContext* last = addFilter(graph, "amovie", nullptr,
        {{"filename", "file:" + clip.string()}, {"stream_index", std::to_string(stream)}});
    last =
        then(last, addFilter(graph, "asetpts", nullptr, {{"expr", "PTS-" + std::to_string(start) + "/TB"}}));
    // Fills holes, so that the sound keeps its place.
    return then(last, addFilter(graph, "aresample", nullptr, {{"async", "1"}, {"first_pts", "0"}}));
}

double startOf(const AVFormatContext& input)
{
    return input.start_time == AV_NOPTS_VALUE ? 0 : double(input.start_time) / AV_TIME_BASE;
}

std::unique_ptr<SideTrack> encoded(const fs::path& clip, int stream, double start, Span span,
    const AVOutputFormat& container, const fs::path& outputName)
{
    const auto build = [&](AVFilterGraph& graph) {
        AVFilterContext* last = samplesOf(graph, clip, stream, start);
        std::vector<std::pair<std::string, std::string>> part{{"start", number(span.from)}};
        if (std::isfinite(span.to))
            part.push_back({"end", number(span.to)});
        last = then(last, addFilter(graph, "atrim", nullptr, part));
        return then(last, addFilter(graph, "asetpts", nullptr, {{"expr", "PTS-STARTPTS"}}));
    };
    return std::make_unique<EncodedTrack>(build, container, outputName);
}

} // namespace

SideTracks tracksOf(
    const fs::path& clip, const AVOutputFormat& container, Span span, const fs::path& outputName)
{
    SideTracks tracks;
    const Input input = openClip(clip);
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVCodecParameters& stored = *input->streams[i]->codecpar;
        const std::string codec = avcodec_get_name(stored.codec_id);
        const bool sound = stored.codec_type == AVMEDIA_TYPE_AUDIO;
        if (!sound && stored.codec_type != AVMEDIA_TYPE_SUBTITLE)
            continue;
        if (holds(container, stored.codec_id))
            tracks.push_back(std::make_unique<CopiedTrack>(clip, int(i), span));
        else if (!sound)
            warn(clip, "subtitles (" + codec + ") have no place in " + outputName.filename().string());
        else if (container.audio_codec == AV_CODEC_ID_NONE)
            warn(clip, "sound (" + codec + ") has no place in " + outputName.filename().string());
        else {
            tracks.push_back(encoded(clip, int(i), startOf(*input), span, container, outputName));
            warn(clip,
                "sound (" + codec + ") is encoded anew as "
                    + avcodec_get_name(tracks.back()->parameters().codec_id));
        }
    }
    return tracks;
}

SideTracks crossfadedTracks(const fs::path& first, const fs::path& second, double at, double duration,
    const AVOutputFormat& container, const fs::path& outputName)
{
    const Input inputs[] = {openClip(first), openClip(second)};
    const auto soundOf = [](const Input& input) {
        return av_find_best_stream(input.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    };
    SideTracks tracks;
    if (soundOf(inputs[0]) < 0 && soundOf(inputs[1]) < 0)
        return tracks;
    if (container.audio_codec == AV_CODEC_ID_NONE) {
        warn(first, "sound has no place in " + outputName.filename().string());
        return tracks;
    }
    const auto build = [&](AVFilterGraph& graph) {
        const auto part = [&](const fs::path& clip, const Input& input, double atLeast, double atMost) {
            const int stream = soundOf(input);
            AVFilterContext* last = stream >= 0
                ? samplesOf(graph, clip, stream, startOf(*input))
                : addFilter(graph, "anullsrc", nullptr, {{"sample_rate", kMixedRate}});
            last = then(last,
                addFilter(graph, "aformat", nullptr,
                    {{"sample_rates", kMixedRate}, {"channel_layouts", "stereo"}, {"sample_fmts", "fltp"}}));
            if (stream >= 0)
                last = then(last, addFilter(graph, "apad", nullptr, {{"whole_dur", number(atLeast)}}));
            return then(last, addFilter(graph, "atrim", nullptr, {{"end", number(atMost)}}));
        };
        const double lengthOfSecond = std::max(duration, double(inputs[1]->duration) / AV_TIME_BASE);
        AVFilterContext* const fade =
            addFilter(graph, "acrossfade", nullptr, {{"duration", number(duration)}});
        connect(part(first, inputs[0], at + duration, at + duration), fade, 0);
        connect(part(second, inputs[1], duration, lengthOfSecond), fade, 1);
        return fade;
    };
    tracks.push_back(std::make_unique<EncodedTrack>(build, container, outputName));
    return tracks;
}

} // namespace media
