// render: a graph over a part of a clip, to numbered pictures with the same bytes in one run or in many.
#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"
#include "effectengine/interruption.h"
#include "effectengine/media/CompanionClip.h"
#include "effectengine/media/FrameFeed.h"
#include "effectengine/media/RenderedPictures.h"
#include "effectengine/media/clipPipeline.h"
#include "effectengine/media/clipWarnings.h"
#include "effectengine/media/followSound.h"
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
fs::path manifestFile(const RenderOptions& options, const fs::path& directory, const FrameRange& range)
{
    std::string part;
    if (!options.chunk.empty()) {
        part = "-" + options.chunk;
        part.replace(part.find('/'), 1, "-of-");
    } else if (!options.frames.empty()) {
        part = "-frames-" + std::to_string(range.first) + "-" + std::to_string(range.last);
    }
    return directory / ("manifest" + part + ".json");
}

FrameRange rangeOf(const RenderOptions& options, long long count)
{
    FrameRange range = options.chunk.empty() ? parseFrames(options.frames) : parseChunk(options.chunk, count);
    if (range.first >= count)
        throw ToolError(ExitCode::usage,
            "--frames " + options.frames + ": " + options.in.string() + " has " + std::to_string(count)
                + " frames");
    range.last = std::min(range.last, count - 1);
    return range;
}

void checkParts(const RenderOptions& options, const Look& look, const FrameRange& range, long long count)
{
    const EffectHostLookInfo& info = look.info();
    if (info.fromStartCount == 0 || (range.first == 0 && range.last == count - 1))
        return;
    throw ToolError(ExitCode::usage,
        options.graph.string() + ": " + info.fromStart[0]
            + ", so the clip cannot be rendered in parts; leave out --chunk and --frames");
}

Json::Value noteOf(ClipReader& reader)
{
    const fs::path& file = reader.info().file;
    Json::Value note;
    note["name"] = file.filename().string();
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
    const FrameRange& range, ClipReader& clip, CompanionClips& companions, long long seed, bool alpha)
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
    settings["first"] = Json::Int64(range.first);
    settings["last"] = Json::Int64(range.last);
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

// The frames that must be rendered: those that the manifest does not note, and those whose picture is not, or
// no longer, the noted one.
std::set<long long> missingFrames(Manifest& manifest, const fs::path& directory, const FrameRange& range)
{
    std::set<long long> missing;
    for (long long frame = range.first; frame <= range.last; ++frame) {
        stopIfAsked();
        const auto noted = manifest.frames().find(frame);
        if (noted != manifest.frames().end()
            && stillThere(directory / noted->second.file, noted->second.sha256))
            continue;
        manifest.drop(frame);
        missing.insert(frame);
    }
    return missing;
}

void render(const RenderOptions& options, const Look& look, SessionOptions sessionOptions)
{
    if (!sessionOptions.seed)
        sessionOptions.seed = kUsualSeed;
    const fs::path pattern = patternOf(options.out);
    const fs::path directory = pattern.parent_path();
    ClipReader reader(options.in, options.pictureRate, options.depth);
    const ClipInfo& clip = reader.info();
    const long long count = reader.table().count();
    const FrameRange range = rangeOf(options, count);
    checkParts(options, look, range, count);
    checkNotItself(options.in, pattern);
    for (const fs::path& file : options.companions.files)
        checkNotItself(file, pattern);
    const pixels::Extent size = workingSize(clip, options.size);
    warnOfDepth(clip);
    CompanionClips companions(options.companions, options.depth, clip, size,
        pictureRateBeside(clip.frameRate, options.pictureRate));

    makeDirectory(directory);
    // By the format alone: looking through the clip would cost every chunk as much as the whole.
    const bool alpha = options.alpha == AlphaChoice::keep
        || (options.alpha == AlphaChoice::automatic && clip.mayBeTransparent());
    Manifest manifest(manifestFile(options, directory, range),
        settingsOf(options, look, size, range, reader, companions, *sessionOptions.seed, alpha));
    if (options.resume)
        manifest.load();
    std::set<long long> missing = missingFrames(manifest, directory, range);
    manifest.begin();

    const Session session(sessionOptions);
    LookRun run(look, unsigned(size.width), unsigned(size.height));
    followSound(run, look, options.in);
    const auto wanted = (long long)(missing.size());
    RenderedPictures sink(pattern, clip, size, {.compression = options.compression}, manifest, wanted);
    FrameFeed feed(reader, size, range, look.info().preRoll);
    feed.showOnly(std::move(missing));
    const auto picture = [&](const ClipFrame& frame) {
        for (unsigned i = 0; i < frame.pictures.size(); ++i)
            run.setSource(frame.pictures[i], i);
        return run.run(timeOf(frame.place, clip));
    };
    const auto next = [&](ClipFrame& frame) {
        if (!feed.next(frame))
            return false;
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
        .expectedFrames = wanted,
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
