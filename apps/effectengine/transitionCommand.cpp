// transition: one frame, or a strip of frames, between two pictures.
#include "effectengine/Pictures.h"
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"
#include "host/EffectGraph.h"

#include <cstdio>
#include <memory>

namespace fs = std::filesystem;

namespace {

// The nodes' own default. Some transitions (rings of waves) run at a speed of their own and need seconds.
constexpr double kDuration = 5.0;

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

void transition(const Options& options, const SessionOptions& sessionOptions)
{
    host::GraphDescription description;
    description.append(options.name);
    description.finish();
    if (description.sources() != 2)
        throw ToolError(ExitCode::usage, "effect " + description.output + " is no transition");
    const PictureSize size = options.size.empty() ? fitted(sizeOf(options.from)) : parseSize(options.size);
    sizeOf(options.to);
    if (options.frames == 0)
        checkOutput(options.out);
    else
        makeDirectory(options.out);

    const Session session(sessionOptions);
    const host::Image from = loadPicture(options.from, size);
    const host::Image to = loadPicture(options.to, size);
    host::EffectGraph graph(description, size.width, size.height);
    graph.setSource(from, 0);
    graph.setSource(to, 1);
    const auto frameAt = [&](double progress) {
        return graph.run({.seconds = progress * kDuration, .total = kDuration});
    };
    if (options.frames == 0) {
        savePicture(frameAt(options.at), options.out);
        return;
    }
    // The first frame shows FROM and the last one TO.
    for (int i = 0; i < options.frames; ++i) {
        const fs::path file = frameFile(options.out, i);
        checkOutput(file);
        savePicture(frameAt(options.frames == 1 ? 0.0 : double(i) / (options.frames - 1)), file);
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
    command->add_option("--frames", options->frames, "write this many pictures, from 0 to 1")
        ->check(CLI::Range(1, 100000))
        ->excludes(at);
    command->add_option("--size", options->size, "WIDTHxHEIGHT to scale to (default: the first one's own)");
    command->callback([options, &session] { transition(*options, session); });
}
