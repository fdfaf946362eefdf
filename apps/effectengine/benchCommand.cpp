// bench: how fast effects are on this machine.
#include "effectengine/EffectChoice.h"
#include "effectengine/ToolError.h"
#include "effectengine/commands.h"
#include "effectengine/effectList.h"
#include "effectengine/interruption.h"
#include "effectengine/pictureFiles.h"
#include "hosting/measure.h"
#include "text/jsonText.h"

#include <tbb/global_control.h>

#include <cstdio>
#include <memory>
#include <thread>

namespace tool {

namespace {

struct Options {
    EffectChoice choice;
    std::string size = "1920x1080";
    std::vector<int> threads;
    double seconds = 0.2;
    bool json = false;
};

struct Result {
    std::string effect;
    int threads;
    double milliseconds;
    double megapixels; ///< per second
    double copies;     ///< the time in copies of the frame
};

Result measure(const KEXSDK::EffectInfo& effect, host::FrameSize frame, int threads, double atLeast)
{
    constexpr std::size_t kFewest = 5;
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(threads));
    host::EffectRun run(effect, describeParameters(effect), frame);
    std::vector<double> times;
    for (double sum = 0; sum < atLeast || times.size() < kFewest; sum += times.back()) {
        stopIfAsked();
        times.push_back(run.once());
    }
    const double seconds = host::median(times);
    return {effect.name, threads, seconds * 1e3, double(frame.width) * frame.height / seconds / 1e6,
        seconds / host::copySeconds(frame)};
}

Json::Value toJson(const Result& result)
{
    Json::Value json;
    json["effect"] = result.effect;
    json["threads"] = result.threads;
    json["milliseconds"] = result.milliseconds;
    json["megapixelsPerSecond"] = result.megapixels;
    json["copies"] = result.copies;
    return json;
}

void bench(const Options& options, const SessionOptions& sessionOptions)
{
    const std::vector<KEXSDK::EffectInfo> effects = chosen(options.choice);
    const PictureSize size = parseSize(options.size);
    const host::FrameSize frame{size.width, size.height};
    std::vector<int> threads = options.threads;
    if (threads.empty())
        threads = {1, std::max(2, int(std::thread::hardware_concurrency()))};
    const Session session(sessionOptions);
    const double copy = host::copySeconds(frame);
    if (!options.json)
        std::printf("M, memcpy of a %u x %u frame on one thread: %.3f ms\n\n%-32s %7s %10s %10s %8s\n",
            size.width, size.height, copy * 1e3, "effect", "threads", "ms", "Mpx/s", "x M");
    Json::Value list(Json::arrayValue);
    for (const KEXSDK::EffectInfo& effect : effects) {
        for (const int count : threads) {
            try {
                const Result result = measure(effect, frame, count, options.seconds);
                list.append(toJson(result));
                if (!options.json)
                    std::printf("%-32s %7d %10.3f %10.0f %8.2f\n", effect.name.c_str(), count,
                        result.milliseconds, result.megapixels, result.copies);
                std::fflush(stdout);
            } catch (const host::Failure&) {
                warn("effect " + effect.name + " is not available here");
                break;
            }
        }
    }
    if (!options.json)
        return;
    Json::Value json;
    json["width"] = size.width;
    json["height"] = size.height;
    json["copyMilliseconds"] = copy * 1e3;
    json["results"] = list;
    std::fputs(text::jsonText(json).c_str(), stdout);
}

} // namespace

void addBenchCommand(CLI::App& tool, const SessionOptions& session)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command = tool.add_subcommand(
        "bench", "Measures effects on this machine, beside a memcpy of the same frame (M).");
    command->add_option("EFFECTS", options->choice.names, "names or GUIDs (default: all)");
    addChoiceOptions(*command, options->choice);
    command->add_option("--size", options->size, "size of the frames (default 1920x1080)")
        ->type_name("WIDTHxHEIGHT");
    command->add_option("--threads", options->threads, "measure with so many threads; repeat for more")
        ->allow_extra_args(false)
        ->check(CLI::Range(1, 1024))
        ->type_name("N");
    command->add_option("--seconds", options->seconds, "least time for each measurement (default 0.2)")
        ->check(CLI::Range(0.0, 3600.0))
        ->type_name("SECONDS");
    command->add_flag("--json", options->json, "results as JSON");
    command->footer("Examples:\n"
                    "  effectengine bench glow hue-shift\n"
                    "  effectengine bench --kind transition --size 3840x2160 --threads 1 --threads 4");
    command->callback([options, &session] { interruptibly([&] { bench(*options, session); }); });
}

} // namespace tool
