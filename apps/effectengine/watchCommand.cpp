// watch: the pictures of a hot folder, as they become complete.
#include "effectengine/FolderWatch.h"
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"
#include "effectengine/finishedPicture.h"
#include "effectengine/interruption.h"
#include "effectengine/pictureBatch.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace tool {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::vector<std::string> words; ///< [EFFECT] FOLDER OUT
    std::optional<double> poll;     ///< seconds
    PictureOptions pictures;
};

/// The work on a folder until a signal comes.
class HotFolder {
public:
    HotFolder(fs::path folder, fs::path out, const Options& options, ResultNames names, const Look& look,
        const SessionOptions& session)
        : folder_(std::move(folder)),
          out_(std::move(out)),
          options_(options),
          names_(std::move(names)),
          look_(look),
          session_(session)
    {
    }

    void run()
    {
        FolderWatch watch(folder_,
            {.recursive = options_.pictures.recursive,
                .poll = options_.poll ? std::optional(std::chrono::duration<double>(*options_.poll))
                                      : std::nullopt,
                .without = out_});
        for (;;)
            process(jobsFor(watch.next()));
    }

    /// What was done, and the failures that are still there.
    BatchSummary summary() const
    {
        BatchSummary all = summary_;
        for (const auto& [file, failure] : failures_)
            all.failed.push_back(failure.failure);
        return all;
    }

private:
    struct Noted {
        BatchSummary::Failure failure;
        FileVersion version; ///< of the source that failed
    };

    PictureJob jobFor(const fs::path& file) const
    {
        const fs::path inner = file.lexically_relative(folder_).parent_path();
        return {file, out_ / inner / resultName(file, names_)};
    }

    std::vector<PictureJob> jobsFor(const std::vector<FolderWatch::File>& files)
    {
        std::vector<PictureJob> jobs;
        for (const auto& [file, changed] : files) {
            if (!isPictureName(file) || isTemporaryName(file))
                continue;
            const auto version = versionOf(file);
            const auto failed = failures_.find(file);
            if (!version || (failed != failures_.end() && failed->second.version == *version))
                continue;
            PictureJob job = jobFor(file);
            if (const fs::path rival = rivalOf(file, names_); !rival.empty()) {
                if (!isFinished(job) || changed)
                    refuse(job, *version, rival);
            } else if (!changed && isFinished(job)) {
                ++summary_.skipped;
            } else {
                jobs.push_back(std::move(job));
            }
        }
        return jobs;
    }

    void refuse(const PictureJob& job, const FileVersion& version, const fs::path& rival)
    {
        const Outcome outcome{ExitCode::cannotWrite,
            "both " + rival.string() + " and " + job.in.string() + " would become " + job.out.string()};
        complain(outcome.words);
        note(job, version, outcome);
    }

    void process(const std::vector<PictureJob>& jobs)
    {
        if (jobs.empty())
            return;
        std::vector<FileVersion> versions;
        for (const PictureJob& job : jobs)
            versions.push_back(versionOf(job.in).value_or(FileVersion{}));
        const Workers workers(
            jobs.size(), [&](std::size_t i) { return jobs[i].in.string(); },
            [&](std::size_t i, Workers::Piece, const Outcome& outcome) {
                note(jobs[i], versions[i], outcome);
            });
        Progress quiet(ProgressKind::none, "pictures", 0);
        const Workers::Result result = workers.runApart(
            processesFor(options_.pictures, jobs.size()),
            [&]() -> Workers::Work {
                const auto run = std::make_shared<PictureRun>(options_.pictures, look_, session_);
                return [this, run, &jobs](std::size_t i) {
                    makeDirectory(directoryOf(jobs[i].out));
                    run->process(jobs[i], advise_ && i == 0);
                    return Workers::Piece::done;
                };
            },
            quiet);
        advise_ = false;
        stopIfAsked();
        if (result.fault != ExitCode::success && result.done + result.failures.size() == 0)
            throw AlreadyReported(result.fault);
        const auto full = [](const Workers::Failure& f) { return f.outcome.code == ExitCode::diskFull; };
        if (std::ranges::any_of(result.failures, full))
            throw AlreadyReported(ExitCode::diskFull);
    }

    void note(const PictureJob& job, const FileVersion& version, const Outcome& outcome)
    {
        if (outcome.code == ExitCode::success) {
            ++summary_.done;
            failures_.erase(job.in);
        } else {
            forgetOldFailures();
            failures_.insert_or_assign(job.in, Noted{{job, outcome}, version});
        }
        tellOne(job, outcome);
    }

    // Lets no more failures gather than somebody would read: first those go whose files are gone.
    void forgetOldFailures()
    {
        constexpr std::size_t kMost = 10'000;
        if (failures_.size() < kMost)
            return;
        std::erase_if(failures_, [](const auto& one) { return !versionOf(one.first); });
        if (failures_.size() >= kMost)
            failures_.clear();
    }

    void tellOne(const PictureJob& job, const Outcome& outcome) const
    {
        if (options_.pictures.progress == ProgressKind::json)
            printLine(jsonLine(job, outcome));
        else if (options_.pictures.progress != ProgressKind::none && outcome.code == ExitCode::success)
            complain(job.in.string() + " -> " + job.out.string());
    }

    fs::path folder_;
    fs::path out_;
    const Options& options_;
    ResultNames names_;
    const Look& look_;
    const SessionOptions& session_;
    BatchSummary summary_;
    std::map<fs::path, Noted> failures_;
    bool advise_ = true; ///< of effects that do nothing; once
};

void checkFolders(const fs::path& folder, const fs::path& out, bool recursive)
{
    if (liesIn(out, folder) && liesIn(folder, out))
        throw ToolError(
            ExitCode::usage, "results would go into the folder that is watched: " + folder.string());
    if (recursive && liesIn(folder, out))
        throw ToolError(
            ExitCode::usage, "the folder that is watched lies in the one for results, " + out.string());
}

void printPlan(const fs::path& folder, const fs::path& out, const Options& options, const ResultNames& names,
    const Look& look)
{
    if (!fs::is_directory(folder))
        throw ToolError(ExitCode::missingInput, "no such folder: " + folder.string());
    RunPlan plan("watch");
    plan.setLook(look);
    plan.setFact("folder", folder.string());
    if (options.poll)
        plan.setFact("poll", *options.poll);
    std::vector<PictureJob> jobs;
    const Outcome outcome = outcomeOf([&] {
        jobs = listPictures({folder}, out, {.recursive = options.pictures.recursive, .names = names});
    });
    if (outcome.code != ExitCode::success && outcome.code != ExitCode::missingInput)
        throw ToolError(outcome.code, outcome.words);
    for (const PictureJob& job : jobs) {
        if (!isTemporaryName(job.in))
            plan.add(planPicture(job, options.pictures, true));
    }
    print(plan, options.pictures.dryRun);
}

void watch(const Options& options, const GraphOptions& graphOptions, const SessionOptions& session)
{
    const std::size_t effects = graphOptions.given() ? 0 : 1;
    if (options.words.size() != effects + 2)
        throw ToolError(ExitCode::usage, "watch takes EFFECT FOLDER OUT, or FOLDER OUT -e EFFECT ...");
    const fs::path folder = options.words[effects];
    const fs::path out = options.words[effects + 1];
    const bool dryRun = options.pictures.dryRun.wanted;
    const Look look = graphOptions.look(effects == 1 ? options.words.front() : "", !dryRun);
    checkPictures(look, options.pictures);
    const ResultNames names = resultNames(options.pictures, graphOptions, look);
    if (names.rename && (!names.rename->hasName() || names.rename->hasIndex()))
        throw ToolError(
            ExitCode::usage, "--rename of watch needs {name}, and has no {index}: pictures come one by one");
    if (!options.pictures.size.empty())
        parseSize(options.pictures.size);
    checkFolders(folder, out, options.pictures.recursive);
    if (dryRun) {
        printPlan(folder, out, options, names, look);
        return;
    }
    HotFolder hotFolder(folder, out, options, names, look, session);
    const Outcome end = outcomeOf([&] { untilAsked([&] { hotFolder.run(); }); });
    const BatchSummary summary = hotFolder.summary();
    if (end.code == ExitCode::success || summary.done + summary.skipped + summary.failed.size() > 0)
        tell(summary, options.pictures.progress);
    stopIfAsked();
    throw ToolError(end.code, end.words);
}

} // namespace

void addWatchCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        tool.add_subcommand("watch", "Applies effects to the pictures of a folder as they become complete.");
    command->add_option("WORDS", options->words, "[EFFECT] FOLDER OUT; results go into the directory OUT")
        ->required()
        ->type_name("");
    const GraphOptions graph(*command);
    addPictureOptions(*command, options->pictures);
    command
        ->add_option("--poll", options->poll,
            "look at the folder that often instead of being told of changes, for network file systems")
        ->check(CLI::Range(0.1, 86400.0))
        ->type_name("SECONDS");
    command->footer(
        "Examples:\n"
        "  effectengine watch glow incoming/ results/\n"
        "  effectengine watch incoming/ results/ -r -e hue-shift -p Hue=20 -e am-70s --progress json\n"
        "  effectengine watch --graph look.json --poll 5 /mnt/share/in /mnt/share/out");
    command->callback(
        [options, graph, &session] { interruptibly([&] { watch(*options, graph, session); }); });
}

} // namespace tool
