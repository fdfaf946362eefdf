// The cost of a GPU effect besides its own work: a program that only copies, alone, in chains, and made anew.
#include "EffectTovOgre/TovOgreRenderThread.h"
#include "hosting/measure.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>

namespace {

constexpr const char* kCopy = "7C1F0A52-93B4-4E0D-8A3C-5B2D6E4F1A90";
constexpr host::FrameSize kFrame{1920, 1080};
constexpr host::FrameSize kSmallFrame{320, 240};

// A resource directory with the one effect that copies its input.
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
    void write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path_ + name, std::ios::binary) << text;
    }

    std::string path_;
};

host::Filter copier(host::FrameSize frame) { return {kCopy, int(frame.width), int(frame.height)}; }

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
BENCHMARK(chain)->ArgName("effects")->Arg(1)->Arg(2)->Arg(5)->Unit(benchmark::kMillisecond)->UseRealTime();

void createDrawDelete(benchmark::State& state)
{
    const host::Image input(kSmallFrame.width, kSmallFrame.height);
    for (auto _ : state) {
        host::Filter filter = copier(kSmallFrame);
        filter.setInput(input);
        benchmark::DoNotOptimize(host::bytesOf(filter.run()).data());
    }
}
BENCHMARK(createDrawDelete)->Unit(benchmark::kMillisecond)->UseRealTime();

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
