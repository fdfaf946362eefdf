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
        "tell on stdout, at the end, how long reading, effects and writing were at work");
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
    addCompressionOption(command, options.compression);
    addAlphaOption(command, options.alpha);
    addReportOptions(command, options.report);
}

void addVideoCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<VideoOptions>();
    CLI::App* const command = tool.add_subcommand("video", "Applies effects to a clip.");
    command->add_option("IN", options->in, "clip, GIF, or numbered pictures such as frames/%06d.png")
        ->required();
    command
        ->add_option("OUT", options->out,
            "clip (.mp4, .mkv, .mov, .webm, .gif...) or numbered pictures such as frames/%06d.png")
        ->required();
    const GraphOptions graph(*command);
    command
        ->add_option(
            "--frames", options->frames, "only these frames, counted from 0; with the sound of theirs")
        ->type_name("A-B");
    command->add_option("--size", options->size, "size to scale to (default: the clip's own)")
        ->type_name("WIDTHxHEIGHT");
    CLI::Option* const rate = command
                                  ->add_option("--rate", options->pictureRate,
                                      "frames per second of numbered pictures (default: 25)")
                                  ->type_name("RATE");
    command
        ->add_option(
            "--timing", options->timing, "clip that numbered pictures were made from: its times and sound")
        ->type_name("CLIP")
        ->excludes(rate);
    addDepthOptions(*command, options->depth);
    addCompanionOptions(*command, options->companions);
    addEncodingOptions(*command, options->encoding);
    command->callback([options, graph, &session] { runVideo(*options, graph, session); });
}

void addRenderCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<RenderOptions>();
    CLI::App* const command =
        tool.add_subcommand("render", "Renders a graph over a clip, or a part of it, to numbered pictures.");
    command->add_option("GRAPH", options->graph, "JSON file with a graph of effects")->required();
    command->add_option("IN", options->in, "clip, or numbered pictures")->required();
    command->add_option("OUT", options->out, "numbered pictures such as frames/%06d.png, or a directory")
        ->required();
    CLI::Option* const frames =
        command->add_option("--frames", options->frames, "only these frames, counted from 0")
            ->type_name("A-B");
    command->add_option("--chunk", options->chunk, "only part I of N equal parts, counted from 1")
        ->type_name("I/N")
        ->excludes(frames);
    command->add_flag("--resume", options->resume, "keep the pictures that an earlier run finished");
    command->add_option("--size", options->size, "size to scale to (default: the clip's own)")
        ->type_name("WIDTHxHEIGHT");
    command
        ->add_option("--rate", options->pictureRate, "frames per second of numbered pictures (default: 25)")
        ->type_name("RATE");
    addDepthOptions(*command, options->depth);
    addCompanionOptions(*command, options->companions);
    addCompressionOption(*command, options->compression);
    addAlphaOption(*command, options->alpha);
    addReportOptions(*command, options->report);
    command->callback([options, &session] { runRender(*options, session); });
}

} // namespace tool
