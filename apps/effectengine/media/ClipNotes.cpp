// The choice of notes, and how containers take them.
#include "effectengine/media/ClipNotes.h"

#include "effectengine/media/ClipReader.h"
#include "effectengine/media/animationPlays.h"
#include "effectengine/media/clipWarnings.h"

#include <algorithm>
#include <array>
#include <cmath>

extern "C" {
#include <libavutil/timecode.h>
}

#include <strings.h>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

constexpr const char* kTimecode = "timecode";
constexpr const char* kTitle = "title";
constexpr const char* kHandler = "handler_name";
constexpr const char* kLanguage = "language";

template <class Names> bool names(const Names& list, std::string_view name)
{
    return std::ranges::find(list, name) != list.end();
}

bool sameName(const std::string& a, const char* b) { return strcasecmp(a.c_str(), b) == 0; }

bool startsWith(const std::string& text, const char* start)
{
    return strncasecmp(text.c_str(), start, std::char_traits<char>::length(start)) == 0;
}

// Whether a note describes the file that it stands in, and would be false in another one.
bool describesFile(const std::string& name, const std::string& value)
{
    constexpr std::array kNames{"major_brand", "minor_version", "compatible_brands", "encoder", "duration",
        "vendor_id", "alpha_mode", "rotate", "number_of_frames", "number_of_bytes", "bps", "source_id",
        kTimecode};
    constexpr std::array kStarts{
        "_statistics_", "duration-", "bps-", "number_of_frames-", "number_of_bytes-"};
    if (sameName(name, "software"))
        return startsWith(value, "Lavf");
    return std::ranges::any_of(kNames, [&](const char* other) { return sameName(name, other); })
        || std::ranges::any_of(kStarts, [&](const char* start) { return startsWith(name, start); });
}

// Whether a note is another one again, with a language behind its name: "location-eng" beside "location".
bool repeats(const AVDictionary* entries, const AVDictionaryEntry& entry)
{
    const std::string name = entry.key;
    const std::size_t dash = name.rfind('-');
    if (dash == std::string::npos || name.size() - dash != 4)
        return false;
    const AVDictionaryEntry* const plain = av_dict_get(entries, name.substr(0, dash).c_str(), nullptr, 0);
    return plain && std::string_view(plain->value) == entry.value;
}

void set(AVDictionary*& entries, const Notes& notes)
{
    for (const auto& [name, value] : notes)
        av_dict_set(&entries, name.c_str(), value.c_str(), 0);
}

bool isProgramsHandler(std::string_view name)
{
    constexpr std::array kParts{"andle", "Core Media", "ISO Media"};
    return std::ranges::any_of(
        kParts, [&](const char* part) { return name.find(part) != std::string_view::npos; });
}

// QuickTime's list has some languages under the older one of their two codes.
const char* quickTimeLanguage(std::string_view language)
{
    constexpr std::array<std::pair<const char*, const char*>, 9> kOlder{
        {{"deu", "ger"}, {"nld", "dut"}, {"ell", "gre"}, {"isl", "ice"}, {"zho", "chi"}, {"fas", "per"},
            {"ron", "rum"}, {"sqi", "alb"}, {"ces", "cze"}}};
    const auto found = std::ranges::find(kOlder, language, [](const auto& pair) { return pair.first; });
    return found == kOlder.end() ? language.data() : found->second;
}

bool holdsChapters(const AVOutputFormat& container)
{
    constexpr std::array kNames{"mp4", "mov", "ipod", "matroska", "webm", "nut", "ogg", "ogv", "asf"};
    return names(kNames, container.name);
}

bool holdsTimecode(const AVOutputFormat& container)
{
    constexpr std::array kNames{"mp4", "mov", "matroska", "mxf", "gxf"};
    return names(kNames, container.name);
}

// The chapters as far as they lie within the span, counted from its start.
std::vector<ClipNotes::Chapter> chaptersOf(const AVFormatContext& input, Span span)
{
    const double start = input.start_time == AV_NOPTS_VALUE ? 0 : double(input.start_time) / AV_TIME_BASE;
    std::vector<ClipNotes::Chapter> chapters;
    for (unsigned i = 0; i < input.nb_chapters; ++i) {
        const AVChapter& chapter = *input.chapters[i];
        const double unit = av_q2d(chapter.time_base);
        const double from = std::max(double(chapter.start) * unit - start, span.from);
        const double to = std::min(double(chapter.end) * unit - start, span.to);
        if (from < to)
            chapters.push_back({from - span.from, to - span.from, notesOf(chapter.metadata)});
    }
    return chapters;
}

// The timecode of the frame at the span's start; empty when the clip has none.
std::string timecodeOf(const AVFormatContext& input, const AVStream& pictures, Span span)
{
    const AVDictionaryEntry* entry = av_dict_get(pictures.metadata, kTimecode, nullptr, 0);
    if (!entry)
        entry = av_dict_get(input.metadata, kTimecode, nullptr, 0);
    if (!entry)
        return {};
    const auto seconds = [](std::int64_t time, AVRational unit) {
        return time == AV_NOPTS_VALUE ? 0 : double(time) * av_q2d(unit);
    };
    const double first =
        seconds(pictures.start_time, pictures.time_base) - seconds(input.start_time, AV_TIME_BASE_Q);
    AVTimecode timecode;
    const AVRational rate = pictures.avg_frame_rate;
    if (rate.num <= 0 || av_timecode_init_from_string(&timecode, rate, entry->value, nullptr) < 0)
        return {};
    char text[AV_TIMECODE_STR_SIZE];
    return av_timecode_make_string(
        &timecode, text, std::max(0, int(std::lround((span.from - first) * av_q2d(rate)))));
}

bool isLight(AVPacketSideDataType type)
{
    return type == AV_PKT_DATA_MASTERING_DISPLAY_METADATA || type == AV_PKT_DATA_CONTENT_LIGHT_LEVEL;
}

} // namespace

Notes notesOf(const AVDictionary* entries)
{
    Notes notes;
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(entries, "", entry, AV_DICT_IGNORE_SUFFIX)))
        if (!describesFile(entry->key, entry->value) && !repeats(entries, *entry))
            notes.push_back({entry->key, entry->value});
    return notes;
}

TrackMarks marksOf(const AVStream& stream)
{
    TrackMarks marks{notesOf(stream.metadata), stream.disposition};
    const auto isHandler = [](const auto& note) { return sameName(note.first, kHandler); };
    const auto handler = std::ranges::find_if(marks.notes, isHandler);
    if (handler == marks.notes.end())
        return marks;
    // MP4 names its tracks by their handlers; most names only tell which program wrote the file.
    const bool told =
        std::ranges::any_of(marks.notes, [](const auto& note) { return sameName(note.first, kTitle); });
    if (told || isProgramsHandler(handler->second))
        marks.notes.erase(handler);
    else
        handler->first = kTitle;
    return marks;
}

void mark(AVStream& stream, const TrackMarks& marks, const AVOutputFormat& container)
{
    set(stream.metadata, marks.notes);
    stream.disposition = marks.disposition;
    const auto valueOf = [&](const char* name) -> const char* {
        const AVDictionaryEntry* const entry = av_dict_get(stream.metadata, name, nullptr, 0);
        return entry ? entry->value : nullptr;
    };
    if (const char* const title = isQuickTimeKind(container) ? valueOf(kTitle) : nullptr)
        av_dict_set(&stream.metadata, kHandler, title, 0);
    const char* const language = valueOf(kLanguage);
    if (language && std::string_view(container.name) == "mov")
        av_dict_set(&stream.metadata, kLanguage, quickTimeLanguage(language), 0);
}

void ClipNotes::apply(AVFormatContext& output, AVStream& stream, bool highRange) const
{
    set(output.metadata, file);
    mark(stream, pictures, *output.oformat);
    output.chapters = static_cast<AVChapter**>(av_calloc(chapters.size(), sizeof(AVChapter*)));
    for (const Chapter& from : chapters) {
        auto* const chapter = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
        if (!output.chapters || !chapter)
            throw std::bad_alloc();
        chapter->id = int(output.nb_chapters) + 1;
        chapter->time_base = {1, 1000};
        chapter->start = std::llround(from.from * 1000);
        chapter->end = std::llround(from.to * 1000);
        set(chapter->metadata, from.notes);
        output.chapters[output.nb_chapters++] = chapter;
    }
    for (const Description& one : descriptions) {
        if (isLight(one.type) && !highRange)
            continue;
        std::uint8_t* const bytes = av_stream_new_side_data(&stream, one.type, one.bytes.size());
        if (!bytes)
            throw std::bad_alloc();
        std::ranges::copy(one.bytes, bytes);
        if (!isLight(one.type))
            output.strict_std_compliance = FF_COMPLIANCE_UNOFFICIAL; // else MP4 leaves these out
    }
}

ClipNotes clipNotesOf(const fs::path& clip, const AVFormatContext& input, int stream,
    const AVOutputFormat& container, Span span, const fs::path& outputName)
{
    const std::string noPlace = " no place in " + outputName.filename().string();
    const AVStream& pictures = *input.streams[stream];
    ClipNotes notes{notesOf(input.metadata), marksOf(pictures), chaptersOf(input, span),
        descriptionsOf(clip, pictures), playsOf(clip)};
    if (!notes.chapters.empty() && !holdsChapters(container)) {
        warn(clip, "chapters have" + noPlace);
        notes.chapters.clear();
    }
    const std::string timecode = timecodeOf(input, pictures, span);
    if (!timecode.empty() && holdsTimecode(container))
        notes.pictures.notes.push_back({kTimecode, timecode});
    else if (!timecode.empty())
        warn(clip, "the timecode has" + noPlace);
    return notes;
}

std::vector<ClipNotes::Description> descriptionsOf(const ClipSource& clip, const AVStream& pictures)
{
    std::vector<ClipNotes::Description> found;
    for (const AVPacketSideDataType type : {AV_PKT_DATA_MASTERING_DISPLAY_METADATA,
             AV_PKT_DATA_CONTENT_LIGHT_LEVEL, AV_PKT_DATA_STEREO3D, AV_PKT_DATA_SPHERICAL}) {
        std::size_t size = 0;
        if (const std::uint8_t* const bytes = av_stream_get_side_data(&pictures, type, &size))
            found.push_back({type, {bytes, bytes + size}});
    }
    const bool told = std::ranges::any_of(found, [](const auto& one) { return isLight(one.type); });
    if (told || clip.passesOnce() || !isHighRange(pictures.codecpar->color_trc))
        return found;
    // Some files tell it with the coded pictures only.
    ClipReader reader(clip);
    const Frame frame = makeFrame();
    if (!reader.next(*frame))
        return found;
    constexpr std::array kInFrames{
        std::pair(AV_FRAME_DATA_MASTERING_DISPLAY_METADATA, AV_PKT_DATA_MASTERING_DISPLAY_METADATA),
        std::pair(AV_FRAME_DATA_CONTENT_LIGHT_LEVEL, AV_PKT_DATA_CONTENT_LIGHT_LEVEL)};
    for (const auto& [inFrame, type] : kInFrames)
        if (const AVFrameSideData* const data = av_frame_get_side_data(frame.get(), inFrame))
            found.push_back({type, {data->data, data->data + data->size}});
    return found;
}

bool isQuickTimeKind(const AVOutputFormat& container)
{
    constexpr std::array kNames{"mp4", "mov", "ipod"};
    return names(kNames, container.name);
}

} // namespace tool::media
