// Options of the verbs for clips, and their work. FFmpeg's libraries take longer to load than most verbs to
// run, so a program of its own holds them, which these functions start when the tool calls them.
#pragma once

#include "effectengine/DepthOptions.h"
#include "effectengine/GraphOptions.h"
#include "effectengine/Progress.h"
#include "effectengine/Session.h"
#include "effectengine/runPlan.h"
#include "pictures/PngEncoder.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tool {

/// The choice between outputs that are transparent where their frames are, and opaque ones.
enum class AlphaChoice {
    automatic, ///< transparent when an input may be, and the output can be
    keep,
    drop,
};

/// What a verb for clips tells while it runs and at its end.
struct ReportOptions {
    ProgressKind progress = ProgressKind::automatic;
    bool stats = false; ///< where the time went
};

/// The user's choices for the output of a verb for clips.
struct EncodingOptions {
    std::string codec;
    std::optional<int> quality;
    std::vector<std::string> encoderOptions;        ///< name=value
    std::optional<pictures::PngEffort> compression; ///< of PNG pictures; empty: fast
    AlphaChoice alpha = AlphaChoice::automatic;
    ReportOptions report;
    std::string container;   ///< name of the output's; empty: by the output's name
    std::string pixelFormat; ///< name of the output's; empty: as the encoder has it
};

/// The user's words about the clip that a verb reads, and about the part and the size that are wanted of it.
struct InputOptions {
    std::filesystem::path file;
    std::string format;          ///< name of its container; empty: by its bytes
    std::string pixelFormat;     ///< of raw pictures
    std::string rate;            ///< of numbered and raw pictures
    std::string size;            ///< of raw pictures; of the output for other clips
    std::string scale;           ///< of the output
    std::string frames;          ///< A-B
    std::string start;           ///< a time
    std::string end;             ///< a time
    std::optional<double> total; ///< seconds that effects take for the clip's duration
};

/// What a clip beside the first one shows once its last frame has had its time.
enum class ClipEnd { hold, loop, black };

/// Clips that run beside the first one and feed the further sources of a graph.
struct CompanionOptions {
    std::vector<std::filesystem::path> files;
    ClipEnd end = ClipEnd::hold;
    bool stretch = false; ///< they fill the picture, whatever their own shape
};

struct VideoOptions {
    InputOptions input;
    std::filesystem::path out;
    std::filesystem::path timing; ///< clip whose times and sound numbered pictures take
    DepthOptions depth;
    CompanionOptions companions;
    EncodingOptions encoding;
    DryRunOptions dryRun;
};

struct ClipTransitionOptions {
    std::string effect;
    std::vector<std::string> parameters; ///< NAME=VALUE
    std::filesystem::path from;
    std::filesystem::path to;
    std::filesystem::path out;
    std::optional<double>
        at; ///< when the second clip begins, in seconds; empty: so that it ends with the first
    double duration = 1;
    std::string size;
    bool stretch = false; ///< the second clip fills the picture, whatever its own shape
    DepthOptions depth;
    EncodingOptions encoding;
    DryRunOptions dryRun;
};

struct RenderOptions {
    std::filesystem::path graph;
    InputOptions input;
    std::filesystem::path out;
    std::string chunk;
    DepthOptions depth;
    CompanionOptions companions;
    bool resume = false;
    std::optional<pictures::PngEffort> compression; ///< of PNG pictures; empty: fast
    AlphaChoice alpha = AlphaChoice::automatic;
    ReportOptions report;
    DryRunOptions dryRun;
};

// The work of the verbs. They throw ToolError and LookError.
void runVideo(const VideoOptions& options, const GraphOptions& graph, const SessionOptions& session);
void runClipTransition(const ClipTransitionOptions& options, const SessionOptions& session);
void runRender(const RenderOptions& options, const SessionOptions& session);
/// Prints the versions of FFmpeg's libraries and the codecs that clips can be read from and written to.
void runCodecs();

/// Adds --format, --codec, --quality, --encoder-option, --output-pixel-format, --compression, --alpha,
/// --progress and --stats to a verb.
void addEncodingOptions(CLI::App& command, EncodingOptions& options);

void addVideoCommand(CLI::App& tool, const SessionOptions& session);
void addRenderCommand(CLI::App& tool, const SessionOptions& session);

} // namespace tool
