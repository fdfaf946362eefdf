// The choice of tracks for an output, and the filters for those that are encoded anew.
#include "effectengine/media/CopiedTrack.h"
#include "effectengine/media/EncodedTrack.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/openClip.h"

#include <algorithm>
#include <cmath>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

constexpr const char* kMixedRate = "48000";

bool holds(const AVOutputFormat& container, AVCodecID codec)
{
    return avformat_query_codec(&container, codec, FF_COMPLIANCE_NORMAL) == 1;
}

std::string number(double seconds) { return std::to_string(std::llround(seconds * 1e6)) + "us"; }

AVFilterContext* then(AVFilterContext* from, AVFilterContext* to)
{
    connect(from, to);
    return to;
}

// The name of a track in messages: its number in the file, its language and its codec.
std::string nameOf(const AVStream& stream)
{
    const AVCodecParameters& stored = *stream.codecpar;
    std::string name = "track " + std::to_string(stream.index + 1);
    if (const AVDictionaryEntry* const language = av_dict_get(stream.metadata, "language", nullptr, 0))
        if (std::string_view(language->value) != "und")
            name += ", " + std::string(language->value);
    if (stored.codec_id != AV_CODEC_ID_NONE)
        return name + ", " + avcodec_get_name(stored.codec_id);
    if (!stored.codec_tag)
        return name + ", unknown codec";
    char tag[AV_FOURCC_MAX_STRING_SIZE] = "";
    return name + ", unknown codec " + av_fourcc_make_string(tag, stored.codec_tag);
}

// Whether the stream can be decoded: there is a decoder, and the stream tells its rate and channels.
bool isDecodable(const AVStream& stream)
{
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    const Codec decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    return decoder && avcodec_parameters_to_context(decoder.get(), stream.codecpar) >= 0
        && avcodec_open2(decoder.get(), codec, nullptr) >= 0 && stream.codecpar->sample_rate > 0
        && stream.codecpar->ch_layout.nb_channels > 0;
}

void warnOfUndecodable(const fs::path& clip, const AVStream& stream)
{
    warn(clip, "sound (" + nameOf(stream) + ") cannot be decoded and is left out");
}

// Adds filters that give one stream of a file as samples; time 0 is the file's start.
AVFilterContext* samplesOf(AVFilterGraph& graph, const fs::path& clip, int stream, double start)
{
    AVFilterContext* last = addFilter(graph, "amovie", nullptr,
        {{"filename", "file:" + clip.string()}, {"stream_index", std::to_string(stream)}});
    last =
        then(last, addFilter(graph, "asetpts", nullptr, {{"expr", "PTS-" + std::to_string(start) + "/TB"}}));
    // Holes are filled, so that the sound keeps its place.
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
        else if (!isDecodable(*input->streams[i]))
            warnOfUndecodable(clip, *input->streams[i]);
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
    const fs::path* const files[] = {&first, &second};
    int sounds[] = {-1, -1};
    for (int i = 0; i < 2; ++i) {
        sounds[i] = av_find_best_stream(inputs[i].get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
        if (sounds[i] >= 0 && !isDecodable(*inputs[i]->streams[sounds[i]])) {
            warnOfUndecodable(*files[i], *inputs[i]->streams[sounds[i]]);
            sounds[i] = -1;
        }
    }
    SideTracks tracks;
    if (sounds[0] < 0 && sounds[1] < 0)
        return tracks;
    if (container.audio_codec == AV_CODEC_ID_NONE) {
        warn(first, "sound has no place in " + outputName.filename().string());
        return tracks;
    }
    const auto build = [&](AVFilterGraph& graph) {
        const auto part = [&](int i, double atLeast, double atMost) {
            AVFilterContext* last = sounds[i] >= 0
                ? samplesOf(graph, *files[i], sounds[i], startOf(*inputs[i]))
                : addFilter(graph, "anullsrc", nullptr, {{"sample_rate", kMixedRate}});
            last = then(last,
                addFilter(graph, "aformat", nullptr,
                    {{"sample_rates", kMixedRate}, {"channel_layouts", "stereo"}, {"sample_fmts", "fltp"}}));
            if (sounds[i] >= 0)
                last = then(last, addFilter(graph, "apad", nullptr, {{"whole_dur", number(atLeast)}}));
            return then(last, addFilter(graph, "atrim", nullptr, {{"end", number(atMost)}}));
        };
        const double lengthOfSecond = std::max(duration, double(inputs[1]->duration) / AV_TIME_BASE);
        AVFilterContext* const fade =
            addFilter(graph, "acrossfade", nullptr, {{"duration", number(duration)}});
        connect(part(0, at + duration, at + duration), fade, 0);
        connect(part(1, duration, lengthOfSecond), fade, 1);
        return fade;
    };
    tracks.push_back(std::make_unique<EncodedTrack>(build, container, outputName));
    return tracks;
}

} // namespace tool::media
