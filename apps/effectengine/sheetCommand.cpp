// sheet: a contact sheet of effects on the user's picture.
#include "effectengine/ContactSheet.h"
#include "effectengine/EffectChoice.h"
#include "effectengine/Progress.h"
#include "effectengine/StillGraph.h"
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"
#include "effectengine/exampleLook.h"
#include "effectengine/interruption.h"
#include "effectengine/pictureFiles.h"
#include "effectengine/runPlan.h"
#include "hosting/imageView.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>

namespace tool {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kOversampling = 2;
constexpr unsigned kTileWidth = 240;

struct Options {
    EffectChoice choice;
    fs::path in;
    fs::path out;
    fs::path second;
    std::string tile;
    int columns = 6;
    double time = 2;
    ProgressKind progress = ProgressKind::automatic;
    DryRunOptions dryRun;
};

PictureSize tileSize(const Options& options)
{
    if (!options.tile.empty())
        return parseSize(options.tile);
    const PictureSize source = sizeOf(options.in);
    const double height = double(kTileWidth) * source.height / source.width;
    return {kTileWidth, unsigned(std::clamp(std::lround(height), 1L, long(2 * kTileWidth)))};
}

// Makes the second picture of a transition from the first where the user named none: grey, and mirrored.
void turnAway(const host::Image& image)
{
    const pixels::View view = viewOf(image);
    for (int y = 0; y < view.height(); ++y) {
        std::ranges::reverse(view.row(y));
        for (pixels::Bgra& p : view.row(y))
            p = pixels::grey(p, u8((p.b + 2 * p.g + p.r) / 4));
    }
}

class TilePainter {
public:
    TilePainter(const Options& options, PictureSize tile)
        : options_(options),
          size_{tile.width * kOversampling, tile.height * kOversampling}
    {
        pictures_.push_back(loadPicture(options.in, size_));
        pictures_.push_back(loadPicture(options.second.empty() ? options.in : options.second, size_));
        if (options.second.empty())
            turnAway(pictures_[1]);
    }

    // Paints a tile with the effect as it looks at the time; an effect with a history has seen a still clip
    // until then.
    void paint(const KEXSDK::EffectInfo& effect, ContactSheet& sheet, std::size_t tile) const
    {
        try {
            const Look look = exampleLook(effect, size_.width, size_.height);
            StillGraph graph(look, std::span(pictures_).first(look.info().inputs));
            CEffectImage* const output = graph.at({.seconds = options_.time});
            sheet.put(tile, {host::bytesOf(output).data(), {int(size_.width), int(size_.height)}});
            sheet.label(tile, effect.name);
        } catch (const LookError&) {
            sheet.label(tile, effect.name + " (n/a)");
            warn("effect " + effect.name + " is not available here");
        }
    }

private:
    const Options& options_;
    PictureSize size_;
    std::vector<host::Image> pictures_;
};

void printPlan(const Options& options, const std::vector<KEXSDK::EffectInfo>& effects, PictureSize tile)
{
    RunPlan plan("sheet");
    std::vector<std::string> names;
    std::ranges::transform(effects, std::back_inserter(names), &KEXSDK::EffectInfo::name);
    plan.setEffects(names);
    plan.setFact("tileWidth", tile.width);
    plan.setFact("tileHeight", tile.height);
    PlannedStep step;
    step.reads.push_back({options.in, sizeOf(options.in)});
    if (!options.second.empty())
        step.reads.push_back({options.second, sizeOf(options.second)});
    step.writes.push_back({options.out, {}});
    step.action = actionFor(options.out);
    plan.add(std::move(step));
    print(plan, options.dryRun);
}

void sheet(const Options& options, const SessionOptions& sessionOptions)
{
    const std::vector<KEXSDK::EffectInfo> effects = chosen(options.choice);
    if (effects.empty())
        throw ToolError(ExitCode::usage, "no effect fits");
    if (lowerExtension(options.out) != ".png")
        throw ToolError(
            ExitCode::cannotWrite, "cannot write " + options.out.string() + ": the name must end in .png");
    checkOutput(options.out);
    if (!options.second.empty())
        sizeOf(options.second);
    const PictureSize tile = tileSize(options);
    if (options.dryRun.wanted)
        return printPlan(options, effects, tile);
    const Session session(sessionOptions);
    const TilePainter painter(options, tile);
    ContactSheet result(effects.size(), options.columns, {int(tile.width), int(tile.height)});
    Progress progress(options.progress, "effects", int(effects.size()));
    for (std::size_t i = 0; i < effects.size(); ++i) {
        stopIfAsked();
        painter.paint(effects[i], result, i);
        progress.report(int(i) + 1);
    }
    progress.finish();
    result.save(options.out);
}

} // namespace

void addSheetCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        tool.add_subcommand("sheet", "Shows effects side by side on a picture, with their names.");
    command->add_option("IN", options->in, "picture")->required();
    command->add_option("OUT", options->out, "the sheet, .png")->required();
    command->add_option("-e,--effect", options->choice.names, "an effect; repeat for more (default: all)")
        ->allow_extra_args(false)
        ->type_name("EFFECT");
    addChoiceOptions(*command, options->choice);
    command
        ->add_option(
            "--second", options->second, "second picture for transitions (default: the first in grey)")
        ->type_name("FILE");
    command->add_option("--tile", options->tile, "size of a tile (default: 240 wide)")
        ->type_name("WIDTHxHEIGHT");
    command->add_option("--columns", options->columns, "tiles in a row (default 6)")
        ->check(CLI::Range(1, 100))
        ->type_name("N");
    command
        ->add_option("--time", options->time, "time within animated effects and transitions of 5 (default 2)")
        ->check(CLI::Range(0.0, 60.0))
        ->type_name("SECONDS");
    addProgressOption(*command, options->progress);
    addDryRunOptions(*command, options->dryRun);
    command->footer("Examples:\n"
                    "  effectengine sheet in.jpg sheet.png --kind am-look\n"
                    "  effectengine sheet from.jpg sheet.png --second to.jpg --kind transition --columns 9");
    command->callback([options, &session] { interruptibly([&] { sheet(*options, session); }); });
}

} // namespace tool
