// apply: a picture through one effect or a chain.
#include "effectengine/EffectStep.h"
#include "effectengine/Pictures.h"
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"

#include <cstdio>
#include <memory>

namespace {

struct Options {
    std::vector<std::string> words; ///< [EFFECT] IN OUT
    std::vector<std::string> effects;
    std::vector<std::string> parameters;
    std::string size;
    float time = 0;
    CLI::Option* effectOption = nullptr;
    CLI::Option* parameterOption = nullptr;
};

// Parameters belong to the effect named last before them, so the order on the command line counts.
std::vector<EffectStep> chainOf(const Options& options, const CLI::App& command)
{
    std::vector<EffectStep> chain;
    if (options.effects.empty())
        chain.push_back(stepFor(options.words.front()));
    auto effect = options.effects.begin();
    auto parameter = options.parameters.begin();
    for (const CLI::Option* option : command.parse_order()) {
        if (option == options.effectOption)
            chain.push_back(stepFor(*effect++));
        if (option != options.parameterOption)
            continue;
        if (chain.empty())
            throw ToolError(ExitCode::usage, "-p " + *parameter + " stands before any effect");
        addParameter(chain.back(), *parameter++);
    }
    for (const EffectStep& step : chain) {
        if (step.effect.inputs != 1)
            throw ToolError(ExitCode::usage,
                "effect " + step.effect.name + " needs " + std::to_string(step.effect.inputs)
                    + " pictures; apply has one");
    }
    return chain;
}

void apply(const Options& options, const CLI::App& command, const SessionOptions& sessionOptions)
{
    const std::size_t wanted = options.effects.empty() ? 3 : 2;
    if (options.words.size() != wanted)
        throw ToolError(ExitCode::usage, "apply takes EFFECT IN OUT, or -e EFFECT ... IN OUT");
    const std::vector<EffectStep> chain = chainOf(options, command);
    const std::filesystem::path in = options.words[wanted - 2];
    const std::filesystem::path out = options.words[wanted - 1];

    const PictureSize source = sizeOf(in);
    const PictureSize size = options.size.empty() ? fitted(source) : parseSize(options.size);
    checkOutput(out);
    if (options.size.empty() && size.width != source.width)
        std::fprintf(stderr, "effectengine: warning: %s is scaled from %u x %u to %u x %u\n", in.c_str(),
            source.width, source.height, size.width, size.height);

    const Session session(sessionOptions);
    const host::Image picture = loadPicture(in, size);
    std::vector<host::Filter> filters;
    for (const EffectStep& step : chain) {
        host::Filter filter = makeFilter(step, size.width, size.height);
        if (options.time != 0)
            filter.set(kEffectCurrentTime, options.time);
        if (filters.empty())
            filter.setInput(picture);
        else
            filter.connectFrom(filters.back());
        filters.push_back(std::move(filter));
    }
    try {
        savePicture(filters.back().run(), out);
    } catch (const host::Failure& failure) {
        throw ToolError(ExitCode::effectFailed, in.string() + ": " + failure.what());
    }
}

} // namespace

void addApplyCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = tool.add_subcommand("apply", "Applies an effect, or a chain, to a picture.");
    command->add_option("WORDS", options->words, "[EFFECT] IN OUT; EFFECT is a name or a GUID")->required();
    options->effectOption =
        command->add_option("-e,--effect", options->effects, "effect of a chain; repeat in order")
            ->allow_extra_args(false);
    options->parameterOption =
        command->add_option("-p,--param", options->parameters, "name=value for the effect before it")
            ->allow_extra_args(false);
    command->add_option("--size", options->size, "WIDTHxHEIGHT to scale to (default: the picture's own)");
    command->add_option("--time", options->time, "time within the effect, for animated ones");
    command->callback([options, command, &session] { apply(*options, *command, session); });
}
