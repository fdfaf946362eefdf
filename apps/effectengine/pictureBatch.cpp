// Pieces of work from pictures, and their summary.
#include "effectengine/pictureBatch.h"

#include "effectengine/finishedPicture.h"

#include <json/writer.h>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace tool {

namespace {

Json::Value jsonOf(const PictureJob& job, const Outcome& outcome)
{
    Json::Value json;
    json["in"] = job.in.string();
    json["out"] = job.out.string();
    json["code"] = int(outcome.code);
    if (!outcome.words.empty())
        json["reason"] = outcome.words;
    return json;
}

std::string lineOf(const Json::Value& json)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, json) + "\n";
}

} // namespace

ExitCode BatchSummary::code() const
{
    const auto full = [](const Failure& failure) { return failure.outcome.code == ExitCode::diskFull; };
    if (std::ranges::any_of(failed, full))
        return ExitCode::diskFull;
    if (failed.empty())
        return fault;
    return done + skipped > 0 ? ExitCode::someFailed : failed.front().outcome.code;
}

BatchSummary runBatch(const std::vector<PictureJob>& jobs, const PictureOptions& options, const Look& look,
    const SessionOptions& session, bool skipFinished)
{
    const Workers workers(jobs.size(), [&](std::size_t i) { return jobs[i].in.string(); });
    Progress progress(options.progress, "pictures", int(jobs.size()));
    const Workers::Result result = workers.run(
        processesFor(options, jobs.size()),
        [&]() -> Workers::Work {
            const auto run = std::make_shared<PictureRun>(options, look, session);
            return [run, &jobs, skipFinished](std::size_t i) {
                if (skipFinished && isFinished(jobs[i]))
                    return Workers::Piece::skipped;
                run->process(jobs[i], i == 0);
                return Workers::Piece::done;
            };
        },
        progress);
    BatchSummary summary{
        .done = result.done, .skipped = result.skipped, .left = 0, .failed = {}, .fault = result.fault};
    for (const Workers::Failure& failure : result.failures)
        summary.failed.push_back({jobs[failure.piece], failure.outcome});
    summary.left = jobs.size() - summary.done - summary.skipped - summary.failed.size();
    return summary;
}

std::string jsonLine(const PictureJob& job, const Outcome& outcome) { return lineOf(jsonOf(job, outcome)); }

std::string jsonLine(const BatchSummary& summary)
{
    Json::Value json;
    json["done"] = Json::UInt64(summary.done);
    json["skipped"] = Json::UInt64(summary.skipped);
    json["left"] = Json::UInt64(summary.left);
    json["failed"] = Json::Value(Json::arrayValue);
    for (const auto& [job, outcome] : summary.failed)
        json["failed"].append(jsonOf(job, outcome));
    return lineOf(json);
}

std::string summaryText(const BatchSummary& summary)
{
    std::string text = std::to_string(summary.done) + " done";
    if (summary.skipped > 0)
        text += ", " + std::to_string(summary.skipped) + " skipped";
    if (summary.left > 0)
        text += ", " + std::to_string(summary.left) + " not begun";
    if (!summary.failed.empty())
        text += ", " + std::to_string(summary.failed.size()) + " failed:";
    for (const auto& [job, outcome] : summary.failed)
        text += "\n  " + outcome.words;
    return text;
}

void printLine(const std::string& line)
{
    std::fputs(line.c_str(), stdout);
    std::fflush(stdout);
}

void tell(const BatchSummary& summary, ProgressKind progress)
{
    if (progress == ProgressKind::json) {
        printLine(jsonLine(summary));
    } else if (progress != ProgressKind::none) {
        complain(summaryText(summary));
    }
}

} // namespace tool
