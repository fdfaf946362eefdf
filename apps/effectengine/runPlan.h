// What a run would read and write and by which effects, told instead of done: --dry-run of the verbs.
#pragma once

#include "effectengine/Look.h"
#include "effectengine/ToolError.h"
#include "effectengine/pictureFiles.h"

#include <CLI/CLI.hpp>
#include <json/value.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tool {

struct DryRunOptions {
    bool wanted = false;
    bool json = false; ///< JSON instead of text
};

/// Adds --dry-run and --json, which needs it, to a verb.
void addDryRunOptions(CLI::App& command, DryRunOptions& options);

/// A file that a run reads or writes.
struct PlannedFile {
    std::filesystem::path file;      ///< "-" for stdin and stdout
    std::optional<PictureSize> size; ///< upright, in pixels; empty when unknown
    /// What else is known, such as {"frames": 250}: numbers, texts, yes and no, in this order. JSON shows
    /// them as members beside "file", "width" and "height", text in brackets.
    std::vector<std::pair<std::string, Json::Value>> facts{};
};

/// One piece of the work: what goes into some files. Files that one piece numbers count as one, named by
/// their pattern.
struct PlannedStep {
    enum class Action {
        make,
        replace, ///< makes what is there anew
        skip,    ///< leaves what is there
        fail,    ///< cannot be done, as can be seen beforehand
    };

    Action action = Action::make;
    std::vector<PlannedFile> reads;
    std::vector<PlannedFile> writes;
    std::string reason{};              ///< why it is skipped or fails
    ExitCode code = ExitCode::success; ///< of a step that fails
};

/// `replace` when there is such a file, else `make`.
PlannedStep::Action actionFor(const std::filesystem::path& target);

/// The description of a run, collected piece by piece.
class RunPlan {
public:
    /// @param verb  "apply"
    explicit RunPlan(std::string verb);

    /// Tells of the look: its effects in order of evaluation, whether each is drawn by the GPU or computed,
    /// how many earlier frames it depends on, and the files that it reads. Throws LookError.
    void setLook(const Look& look);
    /// Tells of effects of which each gives a picture of its own.
    void setEffects(const std::vector<std::string>& names);
    /// A fact of the whole run, such as "processes"; facts are shown in this order.
    void setFact(std::string name, Json::Value value);
    void add(PlannedStep step);

    const std::vector<PlannedStep>& steps() const { return steps_; }

    /// docs/batches.md names the members.
    Json::Value json() const;
    /// The same for people: a few lines, then one for each step.
    std::string text() const;

private:
    struct Effect {
        std::string node; ///< id in the look; empty outside of one
        std::string name;
        std::string runsOn; ///< "gpu", "cpu", or "either" when the renderer decides
        Json::Value history;
    };

    void addEffect(std::string node, const std::string& name);
    std::size_t count(PlannedStep::Action action) const;

    std::string verb_;
    std::vector<Effect> effects_;
    std::optional<Json::Value> history_; ///< of the look
    std::vector<std::filesystem::path> lookFiles_;
    std::vector<std::pair<std::string, Json::Value>> facts_;
    std::vector<PlannedStep> steps_;
};

/// Prints the plan on stdout.
void print(const RunPlan& plan, const DryRunOptions& options);

} // namespace tool
