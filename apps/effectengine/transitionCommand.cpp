// transition: one frame, or a strip of frames, between two pictures.
#include "effectengine/EffectStep.h"
#include "effectengine/Pictures.h"
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"

#include <cstdio>
#include <memory>

namespace fs = std::filesystem;

namespace {

// The nodes' own default. Some transitions (rings of waves) run at a speed of their own and need seconds.
constexpr float kDuration = 5.0f;

struct Options {
    std::string name;
    fs::path from;
    fs::path to;
    fs::path out;
    double at = 0.5;
    int frames = 0; ///< 0: one frame at `at`
    std::string size;
};

fs::path frameFile(const fs::path& directory, int index)
{
    char name[32];
    std::snprintf(name, sizeof name, "frame-%04d.png", index);
    return directory / name;
}

void makeDirectory(const fs::path& directory)
{
    std::error_code error;
    fs::create_directories(directory, error);
    if (error || !fs::is_directory(directory))
        throw ToolError(ExitCode::cannotWrite, "cannot make the directory " + directory.string());
}

void transition(const Options& options, const SessionOptions& sessionOptions)
{
    const EffectStep step = stepFor(options.name);
    if (step.effect.inputs != 2)
        throw ToolError(ExitCode::usage, "effect " + step.effect.name + " is no transition");
    const PictureSize size = options.size.empty() ? fitted(sizeOf(options.from)) : parseSize(options.size);
    sizeOf(options.to);
    if (options.frames == 0)
        checkOutput(options.out);
    else
        makeDirectory(options.out);

    const Session session(sessionOptions);
    const host::Image from = loadPicture(options.from, size);
    const host::Image to = loadPicture(options.to, size);
    host::Filter filter = makeFilter(step, size.width, size.height);
    filter.setInput(from, 0);
    filter.setInput(to, 1);
    filter.set(kEffectTotalTime, kDuration);
    if (options.frames == 0) {
        filter.set(kEffectCurrentTime, float(options.at) * kDuration);
        savePicture(filter.run(), options.out);
        return;
    }
    // The first frame shows FROM and the last one TO.
    for (int i = 0; i < options.frames; ++i) {
        const float progress = options.frames == 1 ? 0.0f : float(i) / float(options.frames - 1);
        filter.set(kEffectCurrentTime, progress * kDuration);
        const fs::path file = frameFile(options.out, i);
        checkOutput(file);
        savePicture(filter.run(), file);
    }
}

} // namespace

void addTransitionCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = tool.add_subcommand("transition", "Shows one picture turning into another.");
    command->add_option("NAME", options->name, "name or GUID of the transition")->required();
    command->add_option("FROM", options->from, "picture shown first")->required();
    command->add_option("TO", options->to, "picture shown last; scaled to the first one's size")->required();
    command->add_option("OUT", options->out, "picture, or with --frames a directory")->required();
    const auto at = command->add_option("--at", options->at, "progress of the one frame, 0 to 1")
                        ->check(CLI::Range(0.0, 1.0));
    command->add_option("--frames", options->frames, "write this many frames, from 0 to 1")
        ->check(CLI::Range(1, 100000))
        ->excludes(at);
    command->add_option(
        "--size", options->size, "WIDTHxHEIGHT to scale to (default: the first picture's own)");
    command->callback([options, &session] { transition(*options, session); });
}
