// render: a graph over a part of a clip, to numbered pictures with the same bytes in one run or in many.
#include "effectengine/PartialFile.h"
#include "effectengine/Progress.h"
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/CompanionClip.h"
#include "effectengine/media/FrameFeed.h"
#include "effectengine/media/RenderedPictures.h"
#include "effectengine/media/clipPipeline.h"
#include "effectengine/media/clipPlan.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/followSound.h"
#include "effectengine/media/totalTime.h"
#include "effectengine/media/workingSize.h"

#include <json/reader.h>

#include <algorithm>
#include <array>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

/// The seed unless the user chose one: all machines of a farm must have the same.
constexpr long long kUsualSeed = 0;

fs::path patternOf(const fs::path& out)
{
    if (isPictureSequence(out)) {
        constexpr std::array kLossless{".png", ".tif", ".tiff"};
        if (std::ranges::find(kLossless, out.extension().string()) == kLossless.end())
            throw ToolError(ExitCode::cannotWrite,
                "cannot write " + out.string() + ": frames are kept without loss, as .png or .tif");
        return out;
    }
    if (out.has_extension() && !fs::is_directory(out))
        throw ToolError(ExitCode::cannotWrite,
            "cannot write " + out.string() + ": name numbered pictures (%06d.png) or a directory");
    return out / "%06d.png";
}

void makeDirectory(const fs::path& directory)
{
    std::error_code error;
    if (!directory.empty())
        fs::create_directories(directory, error); // another machine of the farm may make it at the same time
    if (error)
        throwCannotWrite(directory, error.value());
}

// The manifest beside the pictures; each chunk or range has its own.
fs::path manifestFile(const RenderOptions& options, const fs::path& directory, const ClipPart& clipPart)
{
    const auto& [range, times] = clipPart;
    std::string part;
    if (!options.chunk.empty()) {
        part = "-" + options.chunk;
        part.replace(part.find('/'), 1, "-of-");
    } else if (!times.whole()) {
        part = "-times-" + fixedText(times.start, 3)
            + (times.end == TimeRange().end ? "" : "-" + fixedText(times.end, 3));
    } else if (const InputOptions& input = options.input;
               !input.frames.empty() || !input.start.empty() || !input.end.empty()) {
        part = "-frames-" + std::to_string(range.first)
            + (range.last == FrameRange::kOpen ? "" : "-" + std::to_string(range.last));
    }
    return directory / ("manifest" + part + ".json");
}

// What is rendered. Of a clip that tells its frames beforehand these are numbers up to its last frame.
ClipPart renderedPart(const RenderOptions& options, ClipReader& reader)
{
    const bool passesOnce = reader.info().source.passesOnce();
    if (!options.chunk.empty() && passesOnce)
        throw ToolError(ExitCode::usage,
            "--chunk: nobody knows how many frames come from a pipe; choose by --frames or --start and "
            "--end");
    if (!options.chunk.empty())
        return {parseChunk(options.chunk, reader.table().count()), {}};
    ClipPart part = partOf(options.input, reader);
    if (!passesOnce)
        part.frames.last = std::min(part.frames.last, reader.table().count() - 1);
    return part;
}

void checkParts(const RenderOptions& options, const Look& look, const ClipPart& part, ClipReader& reader)
{
    const EffectHostLookInfo& info = look.info();
    const bool whole = part.whole()
        || (!reader.info().source.passesOnce() && part.frames.first == 0
            && part.frames.last == reader.table().count() - 1);
    if (info.fromStartCount == 0 || whole)
        return;
    throw ToolError(ExitCode::usage,
        options.graph.string() + ": " + info.fromStart[0]
            + ", so the clip cannot be rendered in parts; leave out --chunk, --frames, --start and --end");
}

Json::Value noteOf(ClipReader& reader)
{
    const ClipSource& source = reader.info().source;
    const fs::path file = source.path();
    Json::Value note;
    note["name"] = source.name().filename().string();
    if (!source.format.empty())
        note["format"] = source.format;
    if (source.isRaw()) {
        note["size"] = source.size;
        note["pixelFormat"] = source.pixelFormat;
        note["rate"] = source.pictureRate;
    }
    if (source.passesOnce())
        return note;
    note["frames"] = Json::Int64(reader.table().count());
    std::error_code ignored;
    if (fs::is_regular_file(file))
        note["bytes"] = Json::UInt64(fs::file_size(file, ignored));
    return note;
}

Json::Value noteOf(CompanionClips& clips, const CompanionOptions& options)
{
    Json::Value note;
    for (ClipReader* const reader : clips.readers())
        note["clips"].append(noteOf(*reader));
    note["end"] = options.end == ClipEnd::hold ? "hold" : options.end == ClipEnd::loop ? "loop" : "black";
    note["stretch"] = options.stretch;
    return note;
}

Json::Value settingsOf(const RenderOptions& options, const Look& look, pixels::Extent size,
    const ClipPart& part, ClipReader& clip, CompanionClips& companions, long long seed, bool alpha)
{
    Json::Value settings;
    settings["engine"] = EFFECTENGINE_VERSION;
    std::string errors;
    const std::string text = look.info().json;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &settings["graph"], &errors);
    settings["clip"] = noteOf(clip);
    if (!options.companions.files.empty())
        settings["clip"]["with"] = noteOf(companions, options.companions);
    settings["width"] = size.width;
    settings["height"] = size.height;
    settings["first"] = Json::Int64(part.frames.first);
    if (part.frames.last != FrameRange::kOpen)
        settings["last"] = Json::Int64(part.frames.last);
    if (!part.times.whole())
        settings["start"] = part.times.start;
    if (part.times.end != TimeRange().end)
        settings["end"] = part.times.end;
    if (options.input.total)
        settings["totalTime"] = *options.input.total;
    settings["seed"] = Json::Int64(seed);
    settings["alpha"] = alpha;
    if (clip.info().isToneMapped())
        settings["toneMapping"] = nameOf(clip.info().depth.toneMapping);
    if (options.depth.dither)
        settings["dither"] = true;
    return settings;
}

bool stillThere(const fs::path& file, const std::string& sha256)
{
    if (!fs::exists(file))
        return false;
    try {
        ClipReader reader(file);
        const Frame frame = makeFrame();
        return reader.next(*frame) && frame->format == AV_PIX_FMT_RGBA && pixelHash(*frame) == sha256;
    } catch (const ToolError&) {
        return false; // a picture that was cut short
    }
}

// The frames that need not be rendered: those whose pictures are the noted ones. The manifest forgets others.
std::set<long long> finishedFrames(Manifest& manifest, const fs::path& directory)
{
    std::set<long long> finished;
    std::vector<long long> lost;
    for (const auto& [number, frame] : manifest.frames()) {
        stopIfAsked();
        if (stillThere(directory / frame.file, frame.sha256))
            finished.insert(number);
        else
            lost.push_back(number);
    }
    std::ranges::for_each(lost, [&](long long number) { manifest.drop(number); });
    return finished;
}

void printPlan(const RenderOptions& options, const Look& look, ClipReader& reader, CompanionClips& companions,
    const ClipPart& part, pixels::Extent size, const fs::path& pattern, std::size_t finished,
    std::optional<long long> wanted)
{
    RunPlan plan("render");
    plan.setLook(look);
    PlannedStep step = plannedStep(reader, companions);
    step.reads.insert(step.reads.begin(), {options.graph, {}});
    PlannedFile& out = step.writes.emplace_back(plannedOutput(pattern, part, size));
    if (wanted)
        out.facts.emplace_back("frames", Json::Int64(*wanted));
    step.action = actionFor(numbered(pattern, part.frames.first));
    if (finished > 0) {
        PlannedStep kept;
        kept.action = PlannedStep::Action::skip;
        kept.writes.push_back({pattern, {}, {{"frames", Json::UInt64(finished)}}});
        kept.reason = "an earlier run finished them";
        plan.add(std::move(kept));
    }
    if (wanted != 0)
        plan.add(std::move(step));
    print(plan, options.dryRun);
}

void render(const RenderOptions& options, const Look& look, SessionOptions sessionOptions)
{
    if (!sessionOptions.seed)
        sessionOptions.seed = kUsualSeed;
    const fs::path pattern = patternOf(options.out);
    const fs::path directory = pattern.parent_path();
    const std::string wantedSize = outputSizeOf(options.input);
    ClipReader reader(sourceOf(options.input), options.depth);
    const ClipInfo& clip = reader.info();
    const double total = totalTime(options.input, clip.duration, &look);
    const ClipPart part = renderedPart(options, reader);
    checkParts(options, look, part, reader);
    checkNotItself(clip.source.path(), pattern);
    for (const fs::path& file : options.companions.files)
        checkNotItself(file, pattern);
    const pixels::Extent size = workingSize(clip, wantedSize);
    warnOfDepth(clip);
    CompanionClips companions(
        options.companions, options.depth, clip, size, pictureRateBeside(clip.frameRate, options.input.rate));

    if (!options.dryRun.wanted)
        makeDirectory(directory);
    // By the format alone: looking through the clip would cost every chunk as much as the whole.
    const bool alpha = options.alpha == AlphaChoice::keep
        || (options.alpha == AlphaChoice::automatic && clip.mayBeTransparent());
    std::optional<long long> wanted;
    if (!clip.source.passesOnce())
        wanted = part.frames.last - part.frames.first + 1;
    Manifest manifest(manifestFile(options, directory, part),
        settingsOf(options, look, size, part, reader, companions, *sessionOptions.seed, alpha));
    if (options.resume)
        manifest.load();
    std::set<long long> finished = finishedFrames(manifest, directory);
    if (wanted)
        *wanted -= (long long)(finished.size());
    if (options.dryRun.wanted)
        return printPlan(options, look, reader, companions, part, size, pattern, finished.size(), wanted);
    bool anyShown = !finished.empty();
    manifest.begin();

    const Session session(sessionOptions);
    LookRun run(look, unsigned(size.width), unsigned(size.height));
    followSound(run, look, clip.source);
    RenderedPictures sink(pattern, clip, size, {.compression = options.compression}, manifest, wanted);
    FrameFeed feed(reader, size, part, look.info().preRoll);
    feed.leaveOut(std::move(finished));
    const auto momentOf = [&](const FramePlace& place) {
        FrameTime time = timeOf(place, clip);
        time.total = total;
        return time;
    };
    const auto picture = [&](const ClipFrame& frame) {
        for (unsigned i = 0; i < frame.pictures.size(); ++i)
            run.setSource(frame.pictures[i], i);
        return run.run(momentOf(frame.place));
    };
    const auto next = [&](ClipFrame& frame) {
        if (!feed.next(frame)) {
            if (!anyShown)
                throwNoFrames(options.input, reader, reader.index() + 1);
            return false;
        }
        anyShown = anyShown || frame.shown;
        companions.show(frame,
            timeOf(frame.place, clip).seconds
                + roundingOf(clip.timeBase, clip.frameRate, reader.firstTime()));
        return true;
    };
    runPipeline({.clips = {&reader},
        .sink = sink,
        .size = size,
        .alpha = options.alpha,
        .keepsAlpha = alpha,
        .report = options.report,
        .expectedFrames = wanted.value_or(0),
        .companions = companions.readers(),
        .next = next,
        .picture = picture});
}

} // namespace

} // namespace tool::media

namespace tool {

void runRender(const RenderOptions& options, const SessionOptions& session)
{
    media::DecoderWatch::listen();
    const Look look = Look::fromFile(options.graph);
    warnOf(look, options.graph.string());
    media::checkClipCount(look.info().inputs, options.companions, options.graph.string(), "render");
    interruptibly([&] { media::render(options, look, session); });
}

} // namespace tool
