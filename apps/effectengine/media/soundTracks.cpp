// The choice of tracks for an output, and the filters for those that are encoded anew.
#include "effectengine/media/AttachedTrack.h"
#include "effectengine/media/ConvertedSubtitles.h"
#include "effectengine/media/CopiedTrack.h"
#include "effectengine/media/EncodedTrack.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/openClip.h"
#include "effectengine/media/trackPlaces.h"

#include <algorithm>
#include <cmath>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

constexpr const char* kMixedRate = "48000";

std::string number(double seconds) { return std::to_string(std::llround(seconds * 1e6)) + "us"; }

AVFilterContext* then(AVFilterContext* from, AVFilterContext* to)
{
    connect(from, to);
    return to;
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
    const AVOutputFormat& container, const fs::path& outputName, TrackMarks marks)
{
    const auto build = [&](AVFilterGraph& graph) {
        AVFilterContext* last = samplesOf(graph, clip, stream, start);
        std::vector<std::pair<std::string, std::string>> part{{"start", number(span.from)}};
        if (std::isfinite(span.to))
            part.push_back({"end", number(span.to)});
        last = then(last, addFilter(graph, "atrim", nullptr, part));
        return then(last, addFilter(graph, "asetpts", nullptr, {{"expr", "PTS-STARTPTS"}}));
    };
    return std::make_unique<EncodedTrack>(build, container, outputName, std::move(marks));
}

/// Finds the place of one stream after another in the output.
class TrackChoice {
public:
    TrackChoice(const fs::path& clip, const AVOutputFormat& container, Span span, const fs::path& outputName)
        : clip_(clip),
          input_(openClip(clip)),
          pictures_(pictureStreamOf(*input_, clip)),
          container_(container),
          span_(span),
          outputName_(outputName)
    {
    }

    SideTracks tracks()
    {
        for (unsigned i = 0; i < input_->nb_streams; ++i)
            if (int(i) != pictures_)
                take(*input_->streams[i]);
        chosen_.notes = clipNotesOf(clip_, *input_, pictures_, container_, span_, outputName_);
        return std::move(chosen_);
    }

private:
    void take(const AVStream& stream)
    {
        switch (stream.codecpar->codec_type) {
        case AVMEDIA_TYPE_AUDIO:
            return takeSound(stream);
        case AVMEDIA_TYPE_SUBTITLE:
            return takeSubtitles(stream);
        case AVMEDIA_TYPE_ATTACHMENT:
            return takeAttachment(stream);
        case AVMEDIA_TYPE_VIDEO:
            if (isCover(stream))
                return takeCover(stream);
            return warn(
                clip_, "pictures (" + nameOf(stream) + ") are left out: one track of pictures is taken");
        default:
            return takeOther(stream);
        }
    }

    void takeSound(const AVStream& stream)
    {
        if (sounds_ == soundsIn(container_))
            return warnOfNoPlace("sound", stream, "has");
        ++sounds_;
        if (holds(container_, stream.codecpar->codec_id))
            return add(std::make_unique<CopiedTrack>(clip_, stream.index, span_));
        if (!isDecodable(stream))
            return warnOfUndecodable(clip_, stream);
        add(encoded(clip_, stream.index, startOf(*input_), span_, container_, outputName_, marksOf(stream)));
        warn(clip_, "sound (" + nameOf(stream) + ") is encoded anew as " + codecOfLast());
    }

    // QuickTime keeps chapters as a track of texts, too.
    bool repeatsChapters(const AVStream& stream) const
    {
        const bool text = stream.codecpar->codec_tag == MKTAG('t', 'e', 'x', 't');
        return input_->nb_chapters > 0
            && (stream.discard == AVDISCARD_ALL || (text && stream.nb_frames == input_->nb_chapters));
    }

    void takeSubtitles(const AVStream& stream)
    {
        if (repeatsChapters(stream))
            return;
        auto copy = std::make_unique<CopiedTrack>(clip_, stream.index, span_);
        if (holds(container_, stream.codecpar->codec_id))
            return add(std::move(copy));
        const AVCodec* const encoder = textEncoderFor(stream, container_);
        if (!encoder)
            return warnOfNoPlace("subtitles", stream, "have");
        add(std::make_unique<ConvertedSubtitles>(
            std::move(copy), clip_, *encoder, *input_->streams[pictures_]->codecpar));
        warn(clip_, "subtitles (" + nameOf(stream) + ") are written as " + codecOfLast());
    }

    void takeAttachment(const AVStream& stream)
    {
        if (!takesFiles())
            return warnOfNoPlace("attachment", stream, "has");
        add(std::make_unique<AttachedTrack>(stream));
    }

    void takeCover(const AVStream& stream)
    {
        const AVCodecID codec = stream.codecpar->codec_id;
        const std::string_view name = container_.name;
        const bool known = codec == AV_CODEC_ID_MJPEG || codec == AV_CODEC_ID_PNG;
        if (!known || !(takesFiles() || name == "mp4" || name == "ipod"))
            return warnOfNoPlace("cover picture", stream, "has");
        auto cover = std::make_unique<AttachedTrack>(stream);
        if (takesFiles())
            cover->becomeFile();
        add(std::move(cover));
    }

    // Chapters and timecode, which some files also keep as tracks, go along as notes.
    void takeOther(const AVStream& stream)
    {
        const bool timecode = stream.codecpar->codec_tag == MKTAG('t', 'm', 'c', 'd');
        if (!repeatsChapters(stream) && !timecode)
            warnOfNoPlace("data", stream, "has");
    }

    bool takesFiles() const { return std::string_view(container_.name) == "matroska"; }

    void add(std::unique_ptr<SideTrack> track) { chosen_.tracks.push_back(std::move(track)); }

    std::string codecOfLast() const { return avcodec_get_name(chosen_.tracks.back()->parameters().codec_id); }

    void warnOfNoPlace(const char* what, const AVStream& stream, const char* has) const
    {
        warn(clip_,
            std::string(what) + " (" + nameOf(stream) + ") " + has + " no place in "
                + outputName_.filename().string());
    }

    const fs::path& clip_;
    Input input_;
    int pictures_;
    const AVOutputFormat& container_;
    Span span_;
    const fs::path& outputName_;
    SideTracks chosen_;
    int sounds_ = 0;
};

} // namespace

SideTracks tracksOf(
    const fs::path& clip, const AVOutputFormat& container, Span span, const fs::path& outputName)
{
    return TrackChoice(clip, container, span, outputName).tracks();
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
    tracks.tracks.push_back(std::make_unique<EncodedTrack>(build, container, outputName));
    return tracks;
}

} // namespace tool::media
