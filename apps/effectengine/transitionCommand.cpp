// transition: one frame, or a strip of frames, between two pictures; or one clip running into another.
#include "effectengine/GraphOptions.h"
#include "effectengine/StillGraph.h"
#include "effectengine/ToolError.h"
#include "effectengine/clipVerbs.h"
#include "effectengine/commands.h"
#include "effectengine/interruption.h"
#include "effectengine/pictureFiles.h"
#include "effectengine/runPlan.h"

#include <cstdio>
#include <memory>

namespace tool {

namespace fs = std::filesystem;

namespace {

// Seconds that a transition between pictures lasts: the nodes' own default. Some transitions (rings of waves)
// run at a speed of their own, so a frame depends on it.
constexpr double kDuration = 5.0;

struct Options {
    std::string name;
    std::vector<std::string> parameters;
    fs::path from;
    fs::path to;
    fs::path out;
    std::optional<double> at; ///< progress of a picture, seconds of a clip
    std::optional<double> duration;
    int frames = 0; ///< 0: one frame at `at`
    std::string size;
    bool stretch = false;
    DepthOptions depth;
    EncodingOptions encoding;
    DryRunOptions dryRun;
};

constexpr double kMiddle = 0.5;

constexpr const char* kFramePattern = "frame-%04d.png";

fs::path frameFile(const fs::path& directory, int index)
{
    char name[32];
    std::snprintf(name, sizeof name, kFramePattern, index);
    return directory / name;
}

// Whether the output is one picture; numbered pictures are written as clips are. Kinds that hold animations
// as well are for pictures what they are for clips.
bool isOnePicture(const fs::path& out, const fs::path& from)
{
    const std::string extension = lowerExtension(out);
    const bool mayMove = extension == ".webp" || extension == ".avif";
    return canBeWritten(out) && out.string().find('%') == std::string::npos && (!mayMove || canBeRead(from));
}

// The colour profile, if both pictures have the same: with the profile of one, the colours of the other would
// be wrong.
PhotoMetadata commonProfile(const fs::path& from, const fs::path& to)
{
    PhotoMetadata common;
    common.profile = metadataOf(from).profile;
    if (common.profile != metadataOf(to).profile)
        common.profile.clear();
    return common;
}

void joinClips(const Options& options, const SessionOptions& session)
{
    ClipTransitionOptions clips;
    clips.effect = options.name;
    clips.parameters = options.parameters;
    clips.from = options.from;
    clips.to = options.to;
    clips.out = options.out;
    clips.at = options.at;
    clips.duration = options.duration.value_or(clips.duration);
    clips.size = options.size;
    clips.stretch = options.stretch;
    clips.depth = options.depth;
    clips.encoding = options.encoding;
    clips.dryRun = options.dryRun;
    runClipTransition(clips, session);
}

void printPlan(const Options& options, const Look& look, PictureSize size)
{
    RunPlan plan("transition");
    plan.setLook(look);
    PlannedStep step;
    for (const fs::path& file : {options.from, options.to})
        step.reads.push_back({file, sizeOf(file)});
    if (options.frames == 0) {
        plan.setFact("progress", options.at.value_or(kMiddle));
        checkOutput(options.out);
        step.writes.push_back({options.out, size});
    } else {
        plan.setFact("frames", options.frames);
        step.writes.push_back({options.out / kFramePattern, size});
    }
    step.action = actionFor(options.frames == 0 ? options.out : frameFile(options.out, 0));
    plan.add(std::move(step));
    print(plan, options.dryRun);
}

void showPictures(const Options& options, const SessionOptions& sessionOptions)
{
    const double at = options.at.value_or(kMiddle);
    if (at > 1)
        throw ToolError(ExitCode::usage, "--at takes a picture's progress, 0 to 1");
    if (options.duration)
        throw ToolError(ExitCode::usage, "--duration is for clips; a picture's moment is --at");
    if (options.encoding.compression || options.encoding.report.stats)
        throw ToolError(ExitCode::usage, "--compression and --stats are for clips and numbered pictures");
    if (options.stretch)
        throw ToolError(ExitCode::usage, "--stretch is for clips; pictures are stretched always");
    if (options.depth.dither || options.depth.toneMapping != ToneMapping::none)
        throw ToolError(ExitCode::usage, "--tonemap and --dither are for clips");
    const Look look = transitionLook(options.name, options.parameters);
    const PictureSize size = options.size.empty() ? fitted(sizeOf(options.from)) : parseSize(options.size);
    if (options.dryRun.wanted)
        return printPlan(options, look, size);
    sizeOf(options.to);
    if (options.frames == 0)
        checkOutput(options.out);
    else
        makeDirectory(options.out);

    const Session session(sessionOptions);
    std::vector<host::Image> pictures;
    pictures.push_back(loadPicture(options.from, size));
    pictures.push_back(loadPicture(options.to, size));
    StillGraph graph(look, pictures);
    const PhotoMetadata metadata = commonProfile(options.from, options.to);
    const auto frameAt = [&](double progress) {
        return graph.at({.seconds = progress * kDuration, .total = kDuration});
    };
    if (options.frames == 0) {
        savePicture(frameAt(at), options.out, metadata);
        return;
    }
    // The first frame shows FROM and the last one TO.
    for (int i = 0; i < options.frames; ++i) {
        stopIfAsked();
        const fs::path file = frameFile(options.out, i);
        checkOutput(file);
        savePicture(frameAt(options.frames == 1 ? 0.0 : double(i) / (options.frames - 1)), file, metadata);
    }
}

void transition(const Options& options, const SessionOptions& sessionOptions)
{
    if (options.frames == 0 && !isOnePicture(options.out, options.from))
        joinClips(options, sessionOptions); // handles signals itself
    else
        interruptibly([&] { showPictures(options, sessionOptions); });
}

} // namespace

void addTransitionCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = tool.add_subcommand("transition", "Shows one picture turning into another.");
    command->add_option("NAME", options->name, "name, title or GUID of the transition")->required();
    command->add_option("FROM", options->from, "picture or clip shown first")->required();
    command
        ->add_option("TO", options->to,
            "picture or clip shown last; a picture is scaled to the first one's size, a clip keeps its shape "
            "within it")
        ->required();
    command->add_option("OUT", options->out, "picture; or a clip; or with --frames a directory")->required();
    command->add_option("-p,--param", options->parameters, "parameter of the transition, by name or title")
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE");
    const auto at =
        command
            ->add_option("--at", options->at,
                "picture: progress of the one frame, 0 to 1 (default: 0.5); clip: seconds of FROM "
                "after which TO begins (default: so that the transition ends with FROM)")
            ->check(CLI::NonNegativeNumber);
    command
        ->add_option("--duration", options->duration, "clip: seconds that the transition takes (default: 1)")
        ->check(CLI::PositiveNumber);
    command->add_option("--frames", options->frames, "write this many pictures, from 0 to 1")
        ->check(CLI::Range(1, 100000))
        ->excludes(at);
    command->add_option("--size", options->size, "WIDTHxHEIGHT to scale to (default: the first one's own)");
    command->add_flag("--stretch", options->stretch,
        "clip: TO fills the picture of FROM, without black bars but out of shape");
    addDepthOptions(*command, options->depth);
    addEncodingOptions(*command, options->encoding);
    addDryRunOptions(*command, options->dryRun);
    command->callback([options, &session] { transition(*options, session); });
}

} // namespace tool
