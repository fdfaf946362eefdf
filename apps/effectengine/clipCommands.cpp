// video and render: the verbs for clips on the command line.
#include "effectengine/clipVerbs.h"

namespace tool {

namespace {

void addAlphaOption(CLI::App& command, AlphaChoice& alpha)
{
    static const std::map<std::string, AlphaChoice> kChoices{
        {"auto", AlphaChoice::automatic}, {"keep", AlphaChoice::keep}, {"drop", AlphaChoice::drop}};
    command
        .add_option("--alpha", alpha,
            "transparency of the output: keep it, drop it, or keep it when the input has any (auto)")
        ->transform(CLI::CheckedTransformer(kChoices).description("auto|keep|drop"))
        ->type_name("");
}

void addCompressionOption(CLI::App& command, std::optional<pictures::PngEffort>& compression)
{
    static const std::map<std::string, pictures::PngEffort> kChoices{
        {"fast", pictures::PngEffort::fast}, {"small", pictures::PngEffort::small}};
    command
        .add_option("--compression", compression,
            "PNG pictures: fast (the default), or a tenth smaller in several times the time (small)")
        ->transform(CLI::CheckedTransformer(kChoices).description("fast|small"))
        ->type_name("");
}

void addReportOptions(CLI::App& command, ReportOptions& options)
{
    addProgressOption(command, options.progress);
    command.add_flag("--stats", options.stats,
        "tell on stdout (on stderr when frames go to stdout), at the end, how long reading, effects and "
        "writing "
        "were at work");
}

/// The options of an input. Those of its part exclude each other.
struct InputOptionNames {
    CLI::Option* frames;
    CLI::Option* start;
    CLI::Option* end;
    CLI::Option* rate;
};

InputOptionNames addInputOptions(CLI::App& command, InputOptions& options)
{
    InputOptionNames names{};
    names.frames =
        command.add_option("--frames", options.frames, "only these frames, counted from 0")->type_name("A-B");
    names.start = command
                      .add_option("--start", options.start,
                          "only frames from this time on: seconds or [HH:]MM:SS, from the first frame")
                      ->type_name("TIME")
                      ->excludes(names.frames);
    names.end = command.add_option("--end", options.end, "only frames before this time")
                    ->type_name("TIME")
                    ->excludes(names.frames);
    command
        .add_option("--size", options.size,
            "size to scale to (default: the clip's own); with --input-format rawvideo that of its pictures")
        ->type_name("WIDTHxHEIGHT");
    command.add_option("--scale", options.scale, "size to scale to, of raw pictures as well")
        ->type_name("WIDTHxHEIGHT");
    names.rate =
        command
            .add_option("--rate", options.rate, "frames per second of numbered or raw pictures (default: 25)")
            ->type_name("RATE");
    command
        .add_option("--input-format", options.format,
            "what IN is, where its bytes do not tell: rawvideo, y4m, nut, matroska, mpegts...")
        ->type_name("NAME");
    command
        .add_option("--pixel-format", options.pixelFormat,
            "with --input-format rawvideo: yuv420p, rgb24, bgra, gray...")
        ->type_name("NAME");
    command
        .add_option("--total-time", options.total,
            "seconds that effects take for the clip's duration (default: the clip's, or 5 where it is "
            "unknown)")
        ->check(CLI::PositiveNumber)
        ->type_name("SECONDS");
    return names;
}

void addCompanionOptions(CLI::App& command, CompanionOptions& options)
{
    static const std::map<std::string, ClipEnd> kEnds{
        {"hold", ClipEnd::hold}, {"loop", ClipEnd::loop}, {"black", ClipEnd::black}};
    command
        .add_option(
            "--with", options.files, "second clip, or picture, of a graph that takes two; repeat for more")
        ->allow_extra_args(false)
        ->type_name("CLIP");
    command
        .add_option("--with-end", options.end,
            "what a shorter --with clip shows after its end: its last frame (hold, the default), itself "
            "again "
            "(loop), or black")
        ->transform(CLI::CheckedTransformer(kEnds).description("hold|loop|black"))
        ->type_name("");
    command.add_flag("--stretch", options.stretch,
        "--with clips fill the picture; else they keep their shape, with black beside");
}

} // namespace

void addEncodingOptions(CLI::App& command, EncodingOptions& options)
{
    command
        .add_option("--format", options.container,
            "container, when OUT's name does not tell: y4m, nut, rawvideo, matroska... (default for a pipe: "
            "y4m, "
            "or nut for pictures with transparency or in RGB)")
        ->type_name("NAME");
    command.add_option("--codec", options.codec, "encoder or codec (default: by the output's name)")
        ->type_name("NAME");
    command
        .add_option("--quality", options.quality,
            "lower is better: rate factor of H.264, HEVC, VP9 and AV1, quantiser 2 to 31 of others")
        ->type_name("N");
    command
        .add_option(
            "--encoder-option", options.encoderOptions, "an option of the encoder, such as preset=slow")
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE");
    command
        .add_option("--output-pixel-format", options.pixelFormat,
            "of the encoder, by FFmpeg's names (default: near the input's)")
        ->type_name("NAME");
    addCompressionOption(command, options.compression);
    addAlphaOption(command, options.alpha);
    addReportOptions(command, options.report);
}

void addVideoCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<VideoOptions>();
    CLI::App* const command = tool.add_subcommand("video", "Applies effects to a clip.");
    command
        ->add_option("IN", options->input.file,
            "clip, GIF, numbered pictures such as frames/%06d.png, or - for standard input")
        ->required();
    command
        ->add_option("OUT", options->out,
            "clip (.mp4, .mkv, .mov, .webm, .gif...), numbered pictures such as frames/%06d.png, or - for "
            "standard output")
        ->required();
    const GraphOptions graph(*command);
    CLI::Option* const rate = addInputOptions(*command, options->input).rate;
    command
        ->add_option(
            "--timing", options->timing, "clip that numbered pictures were made from: its times and sound")
        ->type_name("CLIP")
        ->excludes(rate);
    addDepthOptions(*command, options->depth);
    addCompanionOptions(*command, options->companions);
    addEncodingOptions(*command, options->encoding);
    addDryRunOptions(*command, options->dryRun);
    command->callback([options, graph, &session] { runVideo(*options, graph, session); });
}

void addRenderCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<RenderOptions>();
    CLI::App* const command =
        tool.add_subcommand("render", "Renders a graph over a clip, or a part of it, to numbered pictures.");
    command->add_option("GRAPH", options->graph, "JSON file with a graph of effects")->required();
    command->add_option("IN", options->input.file, "clip, numbered pictures, or - for standard input")
        ->required();
    command->add_option("OUT", options->out, "numbered pictures such as frames/%06d.png, or a directory")
        ->required();
    const InputOptionNames names = addInputOptions(*command, options->input);
    command->add_option("--chunk", options->chunk, "only part I of N equal parts, counted from 1")
        ->type_name("I/N")
        ->excludes(names.frames)
        ->excludes(names.start)
        ->excludes(names.end);
    command->add_flag("--resume", options->resume, "keep the pictures that an earlier run finished");
    addDepthOptions(*command, options->depth);
    addCompanionOptions(*command, options->companions);
    addCompressionOption(*command, options->compression);
    addAlphaOption(*command, options->alpha);
    addReportOptions(*command, options->report);
    addDryRunOptions(*command, options->dryRun);
    command->callback([options, &session] { runRender(*options, session); });
}

} // namespace tool
