// Every registered effect, and what mixes effects with their inputs, against a memcpy of the same frame,
// measured in the same run.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "engine/effectList.h"
#include "host/mixing.h"
#include "hosting/imageView.h"
#include "hosting/measure.h"

#include <benchmark/benchmark.h>
#include <tbb/global_control.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <utility>

namespace {

using Frame = host::FrameSize;
constexpr Frame kFrames[] = {{1920, 1080}, {3840, 2160}};

// Measures `once`, which answers the seconds that it took.
template <class Once> void measure(benchmark::State& state, Frame frame, int threads, Once once)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(threads));
    const double copy = host::copySeconds(frame);
    std::vector<double> times;
    for (auto _ : state) {
        times.push_back(once());
        state.SetIterationTime(times.back());
    }
    const double seconds = host::median(times);
    state.counters["ms"] = seconds * 1e3;
    state.counters["Mpx/s"] = double(frame.width) * frame.height / seconds / 1e6;
    state.counters["M"] = seconds / copy;
}

void runEffect(benchmark::State& state, const KEXSDK::EffectInfo& effect, Frame frame, int threads)
{
    host::EffectRun run(effect, describeParameters(effect.guid), frame);
    measure(state, frame, threads, [&] { return run.once(); });
}

double secondsOf(const auto& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// What a graph does beside its effects.
enum class Mixing { mix, mixAndMask, newMask, newSoftMask };
constexpr std::pair<const char*, Mixing> kMixings[] = {{"mix", Mixing::mix},
    {"mix-and-mask", Mixing::mixAndMask}, {"new-mask", Mixing::newMask},
    {"new-soft-mask", Mixing::newSoftMask}};

void runMixing(benchmark::State& state, Mixing mixing, Frame frame, int threads)
{
    const pixels::Extent size{int(frame.width), int(frame.height)};
    std::vector<host::Image> pictures;
    std::mt19937 random(1);
    for (int i = 0; i < 3; ++i) {
        pictures.emplace_back(frame.width, frame.height);
        std::ranges::generate(pictures.back().bytes(), [&] { return (unsigned char)(random()); });
    }
    const auto view = [&](std::size_t i) { return host::viewOf(pictures[i]); };
    const host::MixShares shares(0.7f);
    host::MaskPlane mask(size, false, mixing == Mixing::newSoftMask ? 40 : 0);
    mask.take(view(0));
    measure(state, frame, threads, [&] {
        return secondsOf([&] {
            if (mixing == Mixing::mix)
                host::mixPictures(view(0), view(1), 0.7f, view(2));
            else if (mixing == Mixing::mixAndMask)
                host::mixPictures(view(0), view(1), shares, mask, view(2));
            else
                mask.take(view(0));
        });
    });
}

// Prints one line for each benchmark with the figures that are compared.
class TableReporter final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override
    {
        for (const Frame frame : kFrames)
            std::printf("M, memcpy of a %u x %u frame on one thread: %.3f ms\n", frame.width, frame.height,
                host::copySeconds(frame) * 1e3);
        std::printf("\n%-44s %10s %10s %8s\n", "effect/size/threads", "ms", "Mpx/s", "x M");
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.error_occurred) {
                std::printf("%-44s %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
                continue;
            }
            std::printf("%-44s %10.3f %10.0f %8.2f\n", run.run_name.function_name.c_str(),
                double(run.counters.at("ms")), double(run.counters.at("Mpx/s")),
                double(run.counters.at("M")));
        }
        std::fflush(stdout);
    }
};

// Registers run(state, frame, threads) for every size and number of threads.
template <class Run> void registerOne(const std::string& name, Run run)
{
    for (const Frame frame : kFrames) {
        for (const int threads : {1, 2}) {
            const std::string variant =
                name + "/" + std::to_string(frame.height) + "p/" + std::to_string(threads);
            benchmark::RegisterBenchmark(
                variant.c_str(), [=](benchmark::State& state) { run(state, frame, threads); })
                ->UseManualTime()
                ->MinTime(0.15);
        }
    }
}

void registerAll()
{
    for (const auto& [name, mixing] : kMixings)
        registerOne(name, [kind = mixing](benchmark::State& state, Frame frame, int threads) {
            runMixing(state, kind, frame, threads);
        });
    for (const KEXSDK::EffectInfo& effect : listEffects())
        registerOne(effect.name, [effect](benchmark::State& state, Frame frame, int threads) {
            runEffect(state, effect, frame, threads);
        });
}

} // namespace

int main(int argc, char** argv)
{
    const host::Engine engine(EFFECTENGINE_RESOURCE_DIR, nullptr);
    if (KEXSDK::gpuAvailable())
        listShaderEffectsOf(EFFECTENGINE_RESOURCE_DIR);
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
