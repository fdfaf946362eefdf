// Every registered effect against a memcpy of the same frame, measured in the same run.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "engine/effectList.h"
#include "host/measure.h"

#include <benchmark/benchmark.h>
#include <tbb/global_control.h>

#include <cstdio>

namespace {

using Frame = host::FrameSize;
constexpr Frame kFrames[] = {{1920, 1080}, {3840, 2160}};

void runEffect(benchmark::State& state, const KEXSDK::EffectInfo& effect, Frame frame, int threads)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(threads));
    host::EffectRun run(effect, frame);
    const double copy = host::copySeconds(frame);
    std::vector<double> times;
    for (auto _ : state) {
        times.push_back(run.once());
        state.SetIterationTime(times.back());
    }
    const double seconds = host::median(times);
    state.counters["ms"] = seconds * 1e3;
    state.counters["Mpx/s"] = double(frame.width) * frame.height / seconds / 1e6;
    state.counters["M"] = seconds / copy;
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

void registerAll()
{
    for (const KEXSDK::EffectInfo& effect : listEffects()) {
        for (const Frame frame : kFrames) {
            for (const int threads : {1, 2}) {
                const std::string name =
                    effect.name + "/" + std::to_string(frame.height) + "p/" + std::to_string(threads);
                benchmark::RegisterBenchmark(name.c_str(),
                    [effect, frame, threads](
                        benchmark::State& state) { runEffect(state, effect, frame, threads); })
                    ->UseManualTime()
                    ->MinTime(0.15);
            }
        }
    }
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
