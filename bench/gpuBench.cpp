// The cost of a GPU effect besides its own work: a program that only copies, in parts, in chains, and made
// anew. The column CPU counts all threads, those of a software renderer too.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "effects/gpu/GpuEffect.h"
#include "graphics/GraphicsService.h"
#include "graphics/TovEffectBase.h"
#include "hosting/measure.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr const char* kCopy = "7C1F0A52-93B4-4E0D-8A3C-5B2D6E4F1A90";
/// With so many passes before the one that copies, each with sides that are one divisor-th of the picture's.
constexpr int kPasses = 4;
constexpr const char* kPassesOf[] = {"7C1F0A52-93B4-4E0D-8A3C-5B2D6E4F1A91", // none
    "7C1F0A52-93B4-4E0D-8A3C-5B2D6E4F1A92", "7C1F0A52-93B4-4E0D-8A3C-5B2D6E4F1A93", "",
    "7C1F0A52-93B4-4E0D-8A3C-5B2D6E4F1A94"};
constexpr host::FrameSize kFrame{1920, 1080};
constexpr host::FrameSize kSmallFrame{320, 240};

/// The copy as most programs read their picture: where, only the driver can tell.
constexpr const char* kCopyAnywhere = "uniform sampler2D mSample0; varying vec2 textureCoord;"
                                      "vec4 picture(vec2 place) { return texture2D(mSample0, place); }"
                                      "void main() { gl_FragColor = picture(textureCoord); }";
constexpr const char* kCopyInPlace = "uniform sampler2D mSample0; varying vec2 textureCoord;"
                                     "void main() { gl_FragColor = texture2D(mSample0, textureCoord); }";

// A resource directory with effects that copy their input, some of them after passes that blur it.
class Resources {
public:
    Resources()
    {
        char name[] = "/tmp/effectengine-bench-XXXXXX";
        path_ = std::string(mkdtemp(name)) + "/";
        std::filesystem::create_directories(path_ + "Shader");
        write("resources.cfg", "[General]\nFileSystem = .\nFileSystem = Shader\n");
        write("plugins.cfg", "");
        write("Shader/copy.conf", std::string("{\"GUID\":\"") + kCopy + "\", \"SHADER\": \"copy.frag\"}");
        write("Shader/copy.frag",
            "#version 120\nuniform sampler2D mSample0;\nvarying vec2 textureCoord;\n"
            "void main() { gl_FragColor = texture2D(mSample0, textureCoord); }\n");
        write("Shader/blur.frag",
            "#version 120\nuniform sampler2D mSample0;\nuniform vec2 u_pass_resolution;\n"
            "varying vec2 textureCoord;\nvoid main() {\n"
            "vec4 sum = vec4(0.0);\nfor (int i = -4; i <= 4; ++i)\n"
            "sum += texture2D(mSample0, textureCoord + vec2(float(i) / u_pass_resolution.x, 0.0));\n"
            "gl_FragColor = sum / 9.0; }\n");
        for (const int divisor : {0, 1, 2, 4})
            write("Shader/passes" + std::to_string(divisor) + ".conf", passes(divisor));
    }
    ~Resources()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Resources(const Resources&) = delete;
    Resources& operator=(const Resources&) = delete;

    const std::string& path() const { return path_; }

private:
    static std::string passes(int divisor)
    {
        std::string list;
        std::string from = "0";
        for (int i = 0; divisor > 0 && i < kPasses; ++i) {
            const std::string name = "\"" + std::to_string(i) + "\"";
            list += "{\"NAME\": " + name + ", \"SHADER\": \"blur.frag\", \"SCALE\": "
                + std::to_string(1.0 / divisor) + ", \"INPUTS\": [{\"FROM\": " + from + "}]}, ";
            from = name;
        }
        return std::string("{\"GUID\":\"") + kPassesOf[divisor] + "\", \"PASSES\": [" + list
            + "{\"SHADER\": \"copy.frag\", \"INPUTS\": [{\"FROM\": 0}]}]}";
    }
    void write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path_ + name, std::ios::binary) << text;
    }

    std::string path_;
};

host::Filter copier(host::FrameSize frame) { return {kCopy, int(frame.width), int(frame.height)}; }

/// Two effects, of which the second reads the first one's texture.
struct Pair {
    explicit Pair(benchmark::State& state, const char* program)
        : width(u32(state.range(0))),
          height(u32(state.range(1))),
          input(width, height, 0, 32, nullptr),
          between(width, height, 0, 32, nullptr),
          output(width, height, 0, 32, nullptr)
    {
        for (KEXSDK::GpuEffect* effect : {&first, &second}) {
            (*effect)->setSize(width, height);
            (*effect)->setShaderSource(program, true, true);
        }
        first->setInput(input.record(), 0);
        first.draw(between);
        second->setInput(between.record(), 0);
        if (!second.draw(output))
            state.SkipWithError("nothing was drawn");
    }

    u32 width;
    u32 height;
    KEXSDK::CEffectImage input;
    KEXSDK::CEffectImage between;
    KEXSDK::CEffectImage output;
    KEXSDK::GpuEffect first = KEXSDK::GpuEffect::create();
    KEXSDK::GpuEffect second = KEXSDK::GpuEffect::create();
};

void uploadDrawRead(benchmark::State& state, const char* program)
{
    Pair effects(state, program);
    for (auto _ : state)
        effects.first.draw(effects.between);
}

void drawRead(benchmark::State& state, const char* program)
{
    Pair effects(state, program);
    for (auto _ : state)
        effects.second.draw(effects.output);
}

void read(benchmark::State& state, const char* program)
{
    Pair effects(state, program);
    for (auto _ : state)
        KEXSDK::graphics().readBack(*effects.output.record());
}

void sizes(benchmark::internal::Benchmark* parts)
{
    parts->ArgNames({"", ""})->Args({1920, 1080})->Args({640, 480})->Args({64, 48});
    parts->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}
BENCHMARK_CAPTURE(uploadDrawRead, inPlace, kCopyInPlace)->Apply(sizes);
BENCHMARK_CAPTURE(uploadDrawRead, anywhere, kCopyAnywhere)->Apply(sizes);
BENCHMARK_CAPTURE(drawRead, inPlace, kCopyInPlace)->Apply(sizes);
BENCHMARK_CAPTURE(drawRead, anywhere, kCopyAnywhere)->Apply(sizes);
BENCHMARK_CAPTURE(read, whole, kCopyInPlace)->Apply(sizes);

// Measures frames through a chain of `links` effects, of which the host reads the last one's output.
void chain(benchmark::State& state)
{
    const auto links = std::size_t(state.range(0));
    const host::Image input(kFrame.width, kFrame.height);
    std::deque<host::Filter> filters;
    for (std::size_t i = 0; i < links; ++i) {
        filters.push_back(copier(kFrame));
        i == 0 ? filters[0].setInput(input) : filters[i].connectFrom(filters[i - 1]);
    }
    filters.back().run();
    for (auto _ : state) {
        input.bytes()[0] ^= 1; // frames of a video are never the same
        benchmark::DoNotOptimize(host::bytesOf(filters.back().run()).data());
    }
}
BENCHMARK(chain)
    ->ArgName("effects")
    ->Arg(1)
    ->Arg(2)
    ->Arg(5)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

// Measures frames of an effect whose last pass copies the input.
void passes(benchmark::State& state)
{
    const host::Image input(kFrame.width, kFrame.height);
    host::Filter filter(kPassesOf[state.range(0)], int(kFrame.width), int(kFrame.height));
    filter.setInput(input);
    filter.run();
    for (auto _ : state) {
        input.bytes()[0] ^= 1;
        benchmark::DoNotOptimize(host::bytesOf(filter.run()).data());
    }
}
BENCHMARK(passes)
    ->ArgName("divisor")
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Arg(4)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void createDrawDelete(benchmark::State& state)
{
    const host::Image input(kSmallFrame.width, kSmallFrame.height);
    for (auto _ : state) {
        host::Filter filter = copier(kSmallFrame);
        filter.setInput(input);
        benchmark::DoNotOptimize(host::bytesOf(filter.run()).data());
    }
}
BENCHMARK(createDrawDelete)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    const Resources resources;
    const host::Engine engine(resources.path(), nullptr);
    if (!KEXSDK::gpuAvailable()) {
        std::fputs("effectengine_gpu_bench: nothing here can draw with OpenGL.\n", stderr);
        return 8;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
