// Every registered effect against a memcpy of the same frame, measured in the same run.
#include "engine/effectList.h"
#include "host/Host.h"
#include "host/exampleValues.h"

#include <benchmark/benchmark.h>
#include <tbb/global_control.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>

namespace {

using Seconds = std::chrono::duration<double>;

struct Frame {
    unsigned width;
    unsigned height;
};
constexpr Frame kFrames[] = {{1920, 1080}, {3840, 2160}};

// Smooth areas, edges and noise in about the proportions of a photograph; the same in every run.
void paint(const host::Image& image, unsigned seed)
{
    std::mt19937 random(seed);
    const unsigned w = image.width();
    auto bytes = image.bytes();
    for (std::size_t i = 0; i < bytes.size() / 4; ++i) {
        const unsigned x = unsigned(i % w);
        const unsigned y = unsigned(i / w);
        const unsigned noise = random() & 15;
        bytes[4 * i + 0] = (unsigned char)(x * 255 / w / 2 + noise + seed * 20);
        bytes[4 * i + 1] = (unsigned char)((y & 255) / 2 + noise);
        bytes[4 * i + 2] = (unsigned char)(((x ^ y) & 64) + noise * 4);
        bytes[4 * i + 3] = 255;
    }
}

// Median of single-threaded memcpy runs: the yardstick "M".
double copySeconds(Frame frame)
{
    static std::map<unsigned, double> known;
    if (const auto found = known.find(frame.width); found != known.end())
        return found->second;
    const std::size_t size = std::size_t(frame.width) * frame.height * 4;
    std::vector<unsigned char> from(size, 1);
    std::vector<unsigned char> to(size, 2);
    std::vector<double> runs(31);
    for (double& run : runs) {
        const auto start = std::chrono::steady_clock::now();
        std::memcpy(to.data(), from.data(), size);
        benchmark::ClobberMemory();
        run = Seconds(std::chrono::steady_clock::now() - start).count();
    }
    std::ranges::nth_element(runs, runs.begin() + 15);
    return known[frame.width] = runs[15];
}

// A 33-cube that bends every channel, so that a table look-up is measured and not a copy.
const std::wstring& exampleTable()
{
    static const std::wstring path = [] {
        constexpr int kSize = 33;
        const std::filesystem::path file = std::filesystem::temp_directory_path() / "effectengine-bench.cube";
        std::ofstream out(file);
        out << "LUT_3D_SIZE " << kSize << '\n';
        for (int i = 0; i < kSize * kSize * kSize; ++i) {
            const auto level = [&](int step) { return double(i / step % kSize) / (kSize - 1); };
            const double r = level(1);
            const double g = level(kSize);
            const double b = level(kSize * kSize);
            out << r * r << ' ' << 0.8 * g + 0.2 * b << ' ' << 1 - (1 - b) * (1 - b) << '\n';
        }
        return file.wstring();
    }();
    return path;
}

// Effects with a history reach their steady state, and own all their memory, only after some frames.
int warmUpFrames(const KEXSDK::EffectInfo& effect) { return effect.history.frames == 0 ? 1 : 40; }

void runEffect(benchmark::State& state, const KEXSDK::EffectInfo& effect, Frame frame, int threads)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(threads));
    std::vector<host::Image> inputs;
    host::Filter filter(effect.guid, int(frame.width), int(frame.height));
    host::setExampleValues(filter, describeParameters(effect.guid), frame.width, frame.height);
    for (unsigned i = 0; i < effect.inputs; ++i) {
        paint(inputs.emplace_back(frame.width, frame.height), i);
        filter.setInput(inputs.back(), i);
    }
    filter.set(kEffectTotalTime, 2.0f);
    filter.set(kEffectCurrentTime, 1.0f);
    for (const KEXSDK::ParamInfo* param : describeParameters(effect.guid)) {
        if (param->type == KEXSDK::ParamType::filePath)
            filter.set(param->name, exampleTable());
    }
    for (int i = 0; i < warmUpFrames(effect); ++i)
        filter.run();

    const double copy = copySeconds(frame);
    std::vector<double> runs;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        filter.run();
        runs.push_back(Seconds(std::chrono::steady_clock::now() - start).count());
        state.SetIterationTime(runs.back());
    }
    std::ranges::nth_element(runs, runs.begin() + std::ptrdiff_t(runs.size() / 2));
    const double median = runs[runs.size() / 2];
    state.counters["ms"] = median * 1e3;
    state.counters["Mpx/s"] = double(frame.width) * frame.height / median / 1e6;
    state.counters["M"] = median / copy;
}

// One line per benchmark: what a reader compares.
class TableReporter final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override
    {
        for (const Frame frame : kFrames)
            std::printf("M, memcpy of a %u x %u frame on one thread: %.3f ms\n", frame.width, frame.height,
                copySeconds(frame) * 1e3);
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
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
