// Many pictures through a look, and what is said of them at the end.
#pragma once

#include "effectengine/PictureRun.h"
#include "effectengine/Workers.h"

#include <string>
#include <vector>

namespace tool {

/// What has become of pictures.
struct BatchSummary {
    struct Failure {
        PictureJob job;
        Outcome outcome;
    };

    std::size_t done = 0;
    std::size_t skipped = 0;
    std::size_t left = 0; ///< that were not begun, because the work was stopped
    std::vector<Failure> failed;
    ExitCode fault = ExitCode::success; ///< why nothing could be begun at all

    /// someFailed where others are done, the first failure's code where all failed; diskFull in any case,
    /// since it stops the work.
    ExitCode code() const;
};

/// Does the jobs in processes that take one after the other. Failures go to stderr as they happen; after a
/// signal the summary is that of what was done.
/// @param skipFinished  leaves results that are finished as they are
BatchSummary runBatch(const std::vector<PictureJob>& jobs, const PictureOptions& options, const Look& look,
    const SessionOptions& session, bool skipFinished);

/// What has become of one picture, as a line of JSON: {"in": .., "out": .., "reason": .., "code": ..};
/// "reason" is there for failures.
std::string jsonLine(const PictureJob& job, const Outcome& outcome);
/// The summary as a line of JSON: {"done": .., "skipped": .., "left": .., "failed": [..]}.
std::string jsonLine(const BatchSummary& summary);
/// The same for people, with a line for each failure.
std::string summaryText(const BatchSummary& summary);

/// Prints on stdout, at once.
void printLine(const std::string& line);

/// Tells the summary: as JSON on stdout, else on stderr; with ProgressKind::none not at all.
void tell(const BatchSummary& summary, ProgressKind progress);

} // namespace tool
