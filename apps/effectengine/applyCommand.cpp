// apply: pictures through one effect, a chain or a graph.
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"
#include "effectengine/interruption.h"
#include "effectengine/pictureBatch.h"
#include "effectengine/standardStreams.h"

#include <memory>

namespace tool {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::vector<std::string> words; ///< [EFFECT] IN... OUT
    bool skipExisting = false;
    PictureOptions pictures;
};

void printPlan(const std::vector<PictureJob>& jobs, const Options& options, const Look& look)
{
    RunPlan plan("apply");
    plan.setLook(look);
    plan.setFact("processes", processesFor(options.pictures, jobs.size()));
    BatchSummary summary;
    for (const PictureJob& job : jobs) {
        stopIfAsked();
        const PlannedStep step = planPicture(job, options.pictures, options.skipExisting);
        if (step.action == PlannedStep::Action::fail)
            summary.failed.push_back({job, {step.code, step.reason}});
        else
            ++summary.done;
        plan.add(step);
    }
    print(plan, options.pictures.dryRun);
    if (summary.code() != ExitCode::success)
        throw AlreadyReported(summary.code());
}

void checkStreams(const std::vector<PictureJob>& jobs, const Options& options)
{
    if (jobs[0].out != kStandardStream)
        return;
    if (options.pictures.progress == ProgressKind::json)
        throw ToolError(ExitCode::usage, "--progress json writes to stdout, where the picture goes");
    checkStandardOutput();
}

void apply(const Options& options, const GraphOptions& graphOptions, const SessionOptions& session)
{
    const std::size_t effects = graphOptions.given() ? 0 : 1;
    if (options.words.size() < effects + 2)
        throw ToolError(ExitCode::usage, "apply takes EFFECT IN... OUT, or -e EFFECT ... IN... OUT");
    const PictureOptions& pictures = options.pictures;
    const bool dryRun = pictures.dryRun.wanted;
    const Look look = graphOptions.look(effects == 1 ? options.words.front() : "", !dryRun);
    checkPictures(look, pictures);
    const auto jobs = listPictures({options.words.begin() + std::ptrdiff_t(effects), options.words.end() - 1},
        options.words.back(),
        {.recursive = pictures.recursive, .names = resultNames(pictures, graphOptions, look)});
    checkSaveOptions(jobs, pictures);
    if (dryRun) {
        printPlan(jobs, options, look);
        return;
    }
    checkStreams(jobs, options);
    if (jobs.size() > 1 || fs::path(options.words.back()) != jobs[0].out)
        makeDirectories(jobs);
    if (jobs.size() == 1 && !options.skipExisting && pictures.progress != ProgressKind::json) {
        PictureRun(pictures, look, session).process(jobs[0], true);
        return;
    }
    const BatchSummary summary = runBatch(jobs, pictures, look, session, options.skipExisting);
    tell(summary, pictures.progress);
    stopIfAsked();
    if (summary.code() != ExitCode::success)
        throw AlreadyReported(summary.code());
}

} // namespace

void addApplyCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        tool.add_subcommand("apply", "Applies an effect, a chain or a graph to pictures or folders of them.");
    command
        ->add_option("WORDS", options->words,
            "[EFFECT] IN... OUT; several pictures, or a folder, go into the directory OUT; - is stdin or "
            "stdout")
        ->required()
        ->type_name("");
    const GraphOptions graph(*command);
    addPictureOptions(*command, options->pictures);
    command->add_flag("--skip-existing", options->skipExisting,
        "leave results that are whole and not older than their pictures as they are");
    command->footer(
        "Examples:\n"
        "  effectengine apply glow in.jpg out.png\n"
        "  effectengine apply -e hue-shift -p Hue=20 -e am-70s photos/ results/\n"
        "  effectengine apply push from.png --with to.png half.png --time 2.5\n"
        "  effectengine apply --graph look.json -j 4 --progress json photos/ results/\n"
        "  effectengine apply glow -r --skip-existing --rename '{name}-{effect}.{ext}' photos/ results/\n"
        "  effectengine apply glow - - <in.jpg >out.png");
    command->callback(
        [options, graph, &session] { interruptibly([&] { apply(*options, graph, session); }); });
}

} // namespace tool
