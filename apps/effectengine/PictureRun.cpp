// From a picture file through the effects to a picture file.
#include "effectengine/PictureRun.h"

#include "effectengine/ToolError.h"
#include "effectengine/finishedPicture.h"
#include "effectengine/standardStreams.h"

#include <algorithm>
#include <map>
#include <thread>

namespace tool {

namespace fs = std::filesystem;

namespace {

std::string text(PictureSize size)
{
    return std::to_string(size.width) + " x " + std::to_string(size.height);
}

PictureSize workingSize(const PictureOptions& options, PictureSize source)
{
    return options.size.empty() ? fitted(source) : parseSize(options.size);
}

Colours coloursOf(const PictureOptions& options) { return options.srgb ? Colours::srgb : Colours::asStored; }

// A name that tells the kind of a picture for stdout.
fs::path nameOfStream(const PictureOptions& options)
{
    return "stdout." + (options.format.empty() ? "png" : options.format);
}

// The name that tells the kind of a result.
fs::path kindNameOf(const PictureJob& job, const PictureOptions& options)
{
    return job.out == kStandardStream ? nameOfStream(options) : job.out;
}

// Throws ToolError unless a result can be written there; directories that are still to be made are no reason.
void checkResult(const fs::path& out)
{
    std::error_code ignored;
    if (!canBeWritten(out) || fs::exists(directoryOf(out), ignored))
        checkOutput(out);
}

} // namespace

void addPictureOptions(CLI::App& command, PictureOptions& options)
{
    command.add_option("--with", options.with, "second picture of an effect that takes two; repeat for more")
        ->allow_extra_args(false)
        ->type_name("FILE");
    command.add_option("--size", options.size, "size to scale to (default: the picture's own)")
        ->type_name("WIDTHxHEIGHT");
    command.add_option("--time", options.time, "time within the effect (default: its middle)")
        ->type_name("SECONDS");
    command.add_option("--total", options.total, "duration of the effect (default 5)")->type_name("SECONDS");
    command.add_flag("--strip", options.strip,
        "leave out the photograph's EXIF data (date, camera, place) and colour profile, which all kinds but "
        "BMP and TGA carry");
    command.add_flag("--srgb", options.srgb,
        "convert the colours of pictures with a colour profile to sRGB, and leave the profile out");
    command
        .add_option("--quality", options.save.quality,
            "JPEG (default 92), WebP, AVIF, JPEG XL (default 90; 100 keeps every pixel in these three)")
        ->check(CLI::Range(1, 100))
        ->type_name("N");
    command
        .add_option("--compression", options.save.effort,
            "quicker or smaller files of PNG (default: fast), TIFF, WebP, AVIF, JPEG XL")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, Effort>{{"fast", Effort::fast}, {"small", Effort::small}})
                        .description("{fast,small}"))
        ->type_name("EFFORT");
    command.add_option("-j,--jobs", options.processes, "processes for many pictures (default: processors)")
        ->check(CLI::Range(1, 1024))
        ->type_name("N");
    command.add_flag("-r,--recursive", options.recursive, "go into the folders of a folder, and keep them");
    command
        .add_option("--format", options.format, "kind of the pictures in the directory OUT, and on stdout")
        ->check(CLI::IsMember(writtenKinds()))
        ->type_name("KIND");
    command
        .add_option("--rename", options.rename,
            "names of the pictures in the directory OUT, such as {name}-{effect}.{ext}; also {parent}, "
            "{index}")
        ->type_name("PATTERN");
    addProgressOption(command, options.progress);
    addDryRunOptions(command, options.dryRun);
}

ResultNames resultNames(const PictureOptions& options, const GraphOptions& graph, const Look& look)
{
    ResultNames names{.format = options.format, .rename = {}, .effect = graph.fileStem()};
    if (!options.rename.empty())
        names.rename.emplace(options.rename);
    if (names.effect.empty()) {
        for (const EffectHostNode& node : look.nodes())
            names.effect += (names.effect.empty() ? "" : "+") + std::string(node.effect->name);
    }
    return names;
}

int processesFor(const PictureOptions& options, std::size_t pictures)
{
    const int processors = std::max(1, int(std::thread::hardware_concurrency()));
    return int(
        std::min<std::size_t>(std::size_t(options.processes > 0 ? options.processes : processors), pictures));
}

void checkPictures(const Look& look, const PictureOptions& options)
{
    if (look.info().inputs != options.with.size() + 1)
        throw ToolError(ExitCode::usage,
            "effect " + std::string(look.info().output) + " needs " + std::to_string(look.info().inputs)
                + " pictures; there are " + std::to_string(options.with.size() + 1)
                + (options.with.empty() ? " (--with names a second one)" : ""));
    std::ranges::for_each(options.with, sizeOf);
}

void checkSaveOptions(const std::vector<PictureJob>& jobs, const PictureOptions& options)
{
    const auto meansNothing = [&](auto has) {
        return std::ranges::none_of(
            jobs, [&](const PictureJob& job) { return has(kindNameOf(job, options)); });
    };
    if (options.save.quality && meansNothing(hasQuality))
        throw ToolError(ExitCode::usage, "--quality is for JPEG, WebP, AVIF and JPEG XL");
    if (options.save.effort != Effort::normal && meansNothing(hasEffort))
        throw ToolError(ExitCode::usage, "--compression is for PNG, TIFF, WebP, AVIF and JPEG XL");
}

PlannedStep planPicture(const PictureJob& job, const PictureOptions& options, bool skipFinished)
{
    const bool toStream = job.out == kStandardStream;
    PlannedStep step;
    step.action = toStream ? PlannedStep::Action::make : actionFor(job.out);
    step.reads.push_back({job.in, {}});
    step.writes.push_back({job.out, {}});
    const Outcome outcome = outcomeOf([&] {
        if (job.in == kStandardStream) {
            if (!options.size.empty())
                step.writes[0].size = parseSize(options.size);
        } else {
            step.reads[0].size = sizeOf(job.in);
            step.writes[0].size = workingSize(options, *step.reads[0].size);
        }
        if (!toStream)
            checkResult(job.out);
    });
    for (const fs::path& file : options.with)
        step.reads.push_back({file, sizeOf(file)});
    if (outcome.code != ExitCode::success) {
        step.action = PlannedStep::Action::fail;
        step.reason = outcome.words;
        step.code = outcome.code;
    } else if (skipFinished && isFinished(job)) {
        step.action = PlannedStep::Action::skip;
        step.reason = "is finished";
    }
    return step;
}

PictureRun::PictureRun(const PictureOptions& options, const Look& look, const SessionOptions& session)
    : options_(options),
      look_(look),
      session_(session)
{
}

void PictureRun::process(const PictureJob& job, bool advise)
{
    if (job.in != kStandardStream) {
        processFile(job.in, job.in.string(), job.out, advise);
        return;
    }
    const SpooledInput input;
    try {
        processFile(input.path(), "stdin", job.out, advise);
    } catch (const ToolError& error) {
        throw ToolError(error.code(), input.named(error.what()));
    }
}

void PictureRun::processFile(const fs::path& in, const std::string& shown, const fs::path& out, bool advise)
{
    const PictureFile file(in, coloursOf(options_));
    const PictureSize source = file.size();
    const PictureSize size = workingSize(options_, source);
    const bool toStream = out == kStandardStream;
    if (!toStream)
        checkOutput(out);
    if (options_.size.empty() && size.width != source.width)
        warn(shown + " is scaled from " + text(source) + " to " + text(size));
    if (file.hasMore())
        warn(shown + " holds several pictures, of which the first one is taken");
    StillGraph& graph = graphOf(size);
    file.loadInto(pictures_.front());
    const double time = options_.time.value_or(options_.total / 2);
    CEffectImage* const picture = graph.at({.seconds = time, .total = options_.total});
    const PhotoMetadata metadata = options_.strip ? PhotoMetadata() : file.metadata();
    if (toStream)
        writeStandardOutput(pictureBytes(picture, nameOfStream(options_), metadata, options_.save));
    else
        savePicture(picture, out, metadata, options_.save);
    if (advise)
        std::ranges::for_each(graph.idleEffects(), warn);
}

// A graph that has seen nothing, over pictures of that size; the further ones are loaded.
StillGraph& PictureRun::graphOf(PictureSize size)
{
    if (graph_ && size == PictureSize{pictures_.front().width(), pictures_.front().height()}) {
        graph_->restart();
        return *graph_;
    }
    graph_.reset();
    pictures_.clear();
    pictures_.emplace_back(size.width, size.height);
    for (const fs::path& file : options_.with)
        pictures_.push_back(loadPicture(file, size, coloursOf(options_)));
    return graph_.emplace(look_, pictures_);
}

} // namespace tool
