// apply: pictures through one effect, a chain or a graph.
#include "effectengine/GraphOptions.h"
#include "effectengine/Progress.h"
#include "effectengine/StillGraph.h"
#include "effectengine/ToolError.h"
#include "effectengine/Workers.h"
#include "effectengine/commands.h"
#include "effectengine/interruption.h"
#include "effectengine/pictureFiles.h"
#include "effectengine/pictureList.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <thread>

namespace tool {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::vector<std::string> words; ///< [EFFECT] IN... OUT
    std::vector<fs::path> with;     ///< further pictures, for effects that take several
    std::string size;
    std::optional<double> time; ///< empty: the middle
    double total = FrameTime{}.total;
    bool strip = false;
    bool srgb = false;
    SaveOptions save;
    int processes = 0; ///< 0: one for each processor
    PictureListOptions list;
    ProgressKind progress = ProgressKind::automatic;
};

void checkPictureCount(const Look& look, const Options& options)
{
    if (look.info().inputs == options.with.size() + 1)
        return;
    throw ToolError(ExitCode::usage,
        "effect " + std::string(look.info().output) + " needs " + std::to_string(look.info().inputs)
            + " pictures; apply has " + std::to_string(options.with.size() + 1)
            + (options.with.empty() ? " (--with names a second one)" : ""));
}

/// Pictures through a look, one after the other. Pictures of one size share their memory, which the system
/// would otherwise give and take back again for each.
class PictureRun {
public:
    PictureRun(const Options& options, const Look& look, const SessionOptions& session)
        : options_(options),
          look_(look),
          session_(session)
    {
    }

    /// @param advise  warns of effects that did nothing for want of something
    void process(const PictureJob& job, bool advise)
    {
        const PictureFile file(job.in, colours());
        const PictureSize source = file.size();
        const PictureSize size = options_.size.empty() ? fitted(source) : parseSize(options_.size);
        checkOutput(job.out);
        if (options_.size.empty() && size.width != source.width)
            warn(job.in.string() + " is scaled from " + text(source) + " to " + text(size));
        if (file.hasMore())
            warn(job.in.string() + " holds several pictures, of which the first one is taken");
        StillGraph& graph = graphOf(size);
        file.loadInto(pictures_.front());
        const double time = options_.time.value_or(options_.total / 2);
        savePicture(graph.at({.seconds = time, .total = options_.total}), job.out,
            options_.strip ? PhotoMetadata() : file.metadata(), options_.save);
        if (advise)
            std::ranges::for_each(graph.idleEffects(), warn);
    }

private:
    Colours colours() const { return options_.srgb ? Colours::srgb : Colours::asStored; }

    static std::string text(PictureSize size)
    {
        return std::to_string(size.width) + " x " + std::to_string(size.height);
    }

    // A graph that has seen nothing, over pictures of that size; the further ones are loaded.
    StillGraph& graphOf(PictureSize size)
    {
        if (graph_ && size == PictureSize{pictures_.front().width(), pictures_.front().height()}) {
            graph_->restart();
            return *graph_;
        }
        graph_.reset();
        pictures_.clear();
        pictures_.emplace_back(size.width, size.height);
        for (const fs::path& file : options_.with)
            pictures_.push_back(loadPicture(file, size, colours()));
        return graph_.emplace(look_, pictures_);
    }

    const Options& options_;
    const Look& look_;
    Session session_;
    std::vector<host::Image> pictures_;
    std::optional<StillGraph> graph_; ///< over the pictures
};

// Settings that are for none of the files are a mistake; of several kinds, each takes its own.
void checkSaveOptions(const std::vector<PictureJob>& jobs, const SaveOptions& options)
{
    const auto meansNothing = [&](auto has) {
        return std::ranges::none_of(jobs, [&](const PictureJob& job) { return has(job.out); });
    };
    if (options.quality && meansNothing(hasQuality))
        throw ToolError(ExitCode::usage, "--quality is for JPEG, WebP, AVIF and JPEG XL");
    if (options.effort != Effort::normal && meansNothing(hasEffort))
        throw ToolError(ExitCode::usage, "--compression is for PNG, TIFF, WebP, AVIF and JPEG XL");
}

void apply(const Options& options, const GraphOptions& graphOptions, const SessionOptions& sessionOptions)
{
    const std::size_t effects = graphOptions.given() ? 0 : 1;
    if (options.words.size() < effects + 2)
        throw ToolError(ExitCode::usage, "apply takes EFFECT IN... OUT, or -e EFFECT ... IN... OUT");
    const Look look = graphOptions.look(effects == 1 ? options.words.front() : "");
    checkPictureCount(look, options);
    for (const fs::path& file : options.with)
        sizeOf(file);
    const auto jobs = listPictures({options.words.begin() + std::ptrdiff_t(effects), options.words.end() - 1},
        options.words.back(), options.list);
    checkSaveOptions(jobs, options.save);
    if (jobs.size() == 1) {
        PictureRun(options, look, sessionOptions).process(jobs[0], true);
        return;
    }
    const int processors = std::max(1, int(std::thread::hardware_concurrency()));
    const int processes = std::min(options.processes > 0 ? options.processes : processors, int(jobs.size()));
    const Workers workers(jobs.size(), [&](std::size_t i) { return jobs[i].in.string(); });
    Progress progress(options.progress, "pictures", int(jobs.size()));
    const ExitCode code = workers.run(
        processes,
        [&]() -> Workers::Piece {
            const auto run = std::make_shared<PictureRun>(options, look, sessionOptions);
            return [run, &jobs](std::size_t i) { run->process(jobs[i], i == 0); };
        },
        progress);
    if (code != ExitCode::success)
        throw AlreadyReported(code);
}

} // namespace

void addApplyCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        tool.add_subcommand("apply", "Applies an effect, a chain or a graph to pictures or folders of them.");
    command
        ->add_option("WORDS", options->words,
            "[EFFECT] IN... OUT; several pictures, or a folder, go into the directory OUT")
        ->required()
        ->type_name("");
    const GraphOptions graph(*command);
    command
        ->add_option("--with", options->with, "second picture of an effect that takes two; repeat for more")
        ->allow_extra_args(false)
        ->type_name("FILE");
    command->add_option("--size", options->size, "size to scale to (default: the picture's own)")
        ->type_name("WIDTHxHEIGHT");
    command->add_option("--time", options->time, "time within the effect (default: its middle)")
        ->type_name("SECONDS");
    command->add_option("--total", options->total, "duration of the effect (default 5)")
        ->type_name("SECONDS");
    command->add_flag("--strip", options->strip,
        "leave out the photograph's EXIF data (date, camera, place) and colour profile, which all kinds but "
        "BMP and TGA carry");
    command->add_flag("--srgb", options->srgb,
        "convert the colours of pictures with a colour profile to sRGB, and leave the profile out");
    command
        ->add_option("--quality", options->save.quality,
            "JPEG (default 92), WebP, AVIF, JPEG XL (default 90; 100 keeps every pixel in these three)")
        ->check(CLI::Range(1, 100))
        ->type_name("N");
    command
        ->add_option("--compression", options->save.effort,
            "quicker or smaller files of PNG (default: fast), TIFF, WebP, AVIF, JPEG XL")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, Effort>{{"fast", Effort::fast}, {"small", Effort::small}})
                        .description("{fast,small}"))
        ->type_name("EFFORT");
    command->add_option("-j,--jobs", options->processes, "processes for many pictures (default: processors)")
        ->check(CLI::Range(1, 1024))
        ->type_name("N");
    command->add_flag("-r,--recursive", options->list.recursive, "go into the folders of a folder");
    command->add_option("--format", options->list.format, "kind of the pictures in the directory OUT")
        ->check(CLI::IsMember(writtenKinds()))
        ->type_name("KIND");
    addProgressOption(*command, options->progress);
    command->footer("Examples:\n"
                    "  effectengine apply glow in.jpg out.png\n"
                    "  effectengine apply -e hue-shift -p Hue=20 -e am-70s photos/ results/\n"
                    "  effectengine apply push from.png --with to.png half.png --time 2.5\n"
                    "  effectengine apply --graph look.json -j 4 --progress json photos/ results/");
    command->callback(
        [options, graph, &session] { interruptibly([&] { apply(*options, graph, session); }); });
}

} // namespace tool
