// Pictures through a look: the options of the verbs that do this, and the work on one picture.
#pragma once

#include "effectengine/GraphOptions.h"
#include "effectengine/Progress.h"
#include "effectengine/Session.h"
#include "effectengine/StillGraph.h"
#include "effectengine/pictureFiles.h"
#include "effectengine/pictureList.h"
#include "effectengine/runPlan.h"

#include <optional>
#include <string>
#include <vector>

namespace tool {

/// What is done to every picture, and how the results are called.
struct PictureOptions {
    std::vector<std::filesystem::path> with; ///< further pictures, for effects that take several
    std::string size;
    std::optional<double> time; ///< empty: the middle
    double total = FrameTime{}.total;
    bool strip = false;
    bool srgb = false;
    SaveOptions save;
    int processes = 0; ///< 0: one for each processor
    bool recursive = false;
    std::string format;
    std::string rename;
    ProgressKind progress = ProgressKind::automatic;
    DryRunOptions dryRun;
};

/// Adds the options to a verb.
void addPictureOptions(CLI::App& command, PictureOptions& options);

/// The names of results. Throws ToolError for a --rename that cannot be.
ResultNames resultNames(const PictureOptions& options, const GraphOptions& graph, const Look& look);

/// How many processes work on that many pictures.
int processesFor(const PictureOptions& options, std::size_t pictures);

/// Throws ToolError unless the look takes one picture and those of --with, which can be read.
void checkPictures(const Look& look, const PictureOptions& options);

/// Throws ToolError for settings that mean something for none of the results; of several kinds, each takes
/// its own.
void checkSaveOptions(const std::vector<PictureJob>& jobs, const PictureOptions& options);

/// What would be done for a picture, as far as can be told from its header; failures are part of the answer.
PlannedStep planPicture(const PictureJob& job, const PictureOptions& options, bool skipFinished);

/// Pictures through a look, one after the other. Pictures of one size share their memory, which the system
/// would otherwise give and take back again for each.
class PictureRun {
public:
    /// Starts the engine. The options and the look must outlive this object.
    PictureRun(const PictureOptions& options, const Look& look, const SessionOptions& session);

    /// Reads the picture and writes its result; "-" stands for stdin and stdout. Throws ToolError and
    /// LookError.
    /// @param advise  warns of effects that did nothing for want of something
    void process(const PictureJob& job, bool advise);

private:
    void processFile(const std::filesystem::path& in, const std::string& shown,
        const std::filesystem::path& out, bool advise);
    StillGraph& graphOf(PictureSize size);

    const PictureOptions& options_;
    const Look& look_;
    Session session_;
    std::vector<host::Image> pictures_;
    std::optional<StillGraph> graph_; ///< over the pictures
};

} // namespace tool
