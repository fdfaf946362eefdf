// What the host library adds to a frame: a look of one effect beside DoFilter on a filter of its own, at 1920
// x 1080 in the engine's own form of pictures, frame by frame in turns: effectengine_host_bench RESOURCES
// [EFFECT...]
#include "EffectEngine/EffectEngineHost.h"
#include "hosting/measure.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr host::FrameSize kFrame{1920, 1080};
constexpr int kRounds = 60;
constexpr int kWarmUp = 5;

void succeed(EffectHostResult result)
{
    if (result == EFFECTHOST_OK)
        return;
    std::fprintf(stderr, "%s\n", EffectHostLastError());
    std::exit(1);
}

EffectHostPicture pictureOf(const host::Image& image)
{
    return {image.bytes().data(), std::ptrdiff_t(kFrame.width) * 4, int(kFrame.width), int(kFrame.height),
        EFFECTHOST_BGRA, EFFECTHOST_BOTTOM_UP};
}

template <class Work> double secondsOf(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Release {
    void operator()(EffectHostRun* run) const { EffectHostReleaseRun(run); }
};

std::unique_ptr<EffectHostRun, Release> runOf(const char* effect)
{
    EffectHostLook* look = nullptr;
    EffectHostRun* run = nullptr;
    succeed(EffectHostCreateLook(EFFECTHOST_LOOK_EFFECT, effect, nullptr, &look));
    succeed(EffectHostStartRun(look, kFrame.width, kFrame.height, &run));
    EffectHostReleaseLook(look);
    return std::unique_ptr<EffectHostRun, Release>(run);
}

void compare(const char* name)
{
    const EffectHostEffect* effect = nullptr;
    succeed(EffectHostFindEffect(name, &effect));
    std::vector<host::Image> inputs;
    std::vector<EffectHostPicture> pictures;
    const auto run = runOf(name); // which starts the engine
    host::Filter filter(effect->guid, int(kFrame.width), int(kFrame.height));
    // What looks set by themselves changes how much there is to do.
    for (std::uint32_t i = 0; i < effect->parameterCount; ++i) {
        const EffectHostParameter& parameter = effect->parameters[i];
        if (parameter.hostDefault && parameter.type == EFFECTHOST_FLOAT)
            filter.set(parameter.name, float(*parameter.hostDefault));
        else if (parameter.hostDefault)
            filter.set(parameter.name, int(*parameter.hostDefault));
    }
    for (unsigned i = 0; i < effect->inputs; ++i) {
        inputs.emplace_back(kFrame.width, kFrame.height);
        unsigned state = i + 1;
        for (unsigned char& byte : inputs.back().bytes())
            byte = static_cast<unsigned char>((state = state * 1664525u + 1013904223u) >> 24);
        filter.setInput(inputs.back(), i);
    }
    for (const host::Image& input : inputs)
        pictures.push_back(pictureOf(input));
    const host::Image output(kFrame.width, kFrame.height);

    std::vector<double> direct;
    std::vector<double> hosted;
    for (int i = -kWarmUp; i < kRounds; ++i) {
        const double time = (i + kWarmUp) / 25.0;
        const double alone = secondsOf([&] {
            filter.set(kEffectCurrentTime, float(time));
            filter.run();
        });
        EffectHostFrame frame{pictures.data(), pictures.size(), pictureOf(output), time, 25, 5, 0, nullptr};
        const double withLook = secondsOf([&] { succeed(EffectHostRunFrame(run.get(), &frame)); });
        if (i < 0)
            continue;
        direct.push_back(alone);
        hosted.push_back(withLook);
    }
    const double alone = host::median(direct);
    const double withLook = host::median(hosted);
    std::printf(
        "%-24s %10.3f %10.3f %+9.1f %%\n", name, alone * 1e3, withLook * 1e3, (withLook / alone - 1) * 100);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: effectengine_host_bench RESOURCES [EFFECT...]\n");
        return 2;
    }
    std::vector<const char*> names(argv + 2, argv + argc);
    if (names.empty())
        names = {"black-and-white", "hue-shift", "am-negative", "fade", "push", "blur", "glow",
            "am-color-sketch", "light-room", "echo"};
    succeed(EffectHostOpen(argv[1], nullptr));
    std::printf("%-24s %10s %10s %11s\n", "effect, 1080p", "alone, ms", "look, ms", "more");
    for (const char* const name : names)
        compare(name);
    EffectHostClose();
    return 0;
}
