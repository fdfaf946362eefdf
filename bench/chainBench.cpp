// Chains of five effects against one of them: connected nodes that DoFilter and DoFilterEx evaluate, and the
// look of the host library. The least times of rounds in which all take their turns: effectengine_chain_bench
// RESOURCES [ROUNDS]
#include "EffectEngine/EffectEngineHost.h"
#include "hosting/measure.h"

#include <tbb/global_control.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Chain {
    const char* name;
    std::vector<const char*> effects;
};

const Chain kChains[] = {
    {"light", {"am-negative", "am-warm", "am-gray-scale", "am-cold", "black-and-white"}},
    {"tone", {"am-exposure", "am-warm", "am-lnk", "am-negative", "am-one-color"}},
    {"colour", {"black-and-white", "hue-shift", "balance", "am-retro", "am-warm"}},
};
constexpr host::FrameSize kFrames[] = {{1920, 1080}, {3840, 2160}};

void succeed(EffectHostResult result)
{
    if (result == EFFECTHOST_OK)
        return;
    std::fprintf(stderr, "%s\n", EffectHostLastError());
    std::exit(1);
}

template <class Work> double secondsOf(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

EffectHostPicture pictureOf(const host::Image& image)
{
    return {image.bytes().data(), std::ptrdiff_t(image.width()) * 4, int(image.width()), int(image.height()),
        EFFECTHOST_BGRA, EFFECTHOST_BOTTOM_UP};
}

struct Release {
    void operator()(EffectHostRun* run) const { EffectHostReleaseRun(run); }
};

std::unique_ptr<EffectHostRun, Release> runOf(const Chain& chain, host::FrameSize frame)
{
    EffectHostLook* look = nullptr;
    EffectHostRun* run = nullptr;
    succeed(EffectHostCreateLook(EFFECTHOST_LOOK_EMPTY, nullptr, nullptr, &look));
    for (const char* const effect : chain.effects)
        succeed(EffectHostAppendEffect(look, effect));
    succeed(EffectHostStartRun(look, frame.width, frame.height, &run));
    EffectHostReleaseLook(look);
    return std::unique_ptr<EffectHostRun, Release>(run);
}

std::vector<host::Filter> filtersOf(const Chain& chain, host::FrameSize frame)
{
    std::vector<host::Filter> filters;
    for (const char* const name : chain.effects) {
        const EffectHostEffect* effect = nullptr;
        succeed(EffectHostFindEffect(name, &effect));
        filters.emplace_back(effect->guid, int(frame.width), int(frame.height));
    }
    return filters;
}

void measure(const Chain& chain, host::FrameSize frame, int threads, int rounds)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(threads));
    const host::Image input(frame.width, frame.height);
    const host::Image output(frame.width, frame.height);
    unsigned state = 1;
    for (unsigned char& byte : input.bytes())
        byte = static_cast<unsigned char>((state = state * 1664525u + 1013904223u) >> 24);

    const auto look = runOf(chain, frame); // which starts the engine
    std::vector<host::Filter> alone = filtersOf(chain, frame);
    for (host::Filter& filter : alone)
        filter.setInput(input);
    const auto connected = [&] {
        std::vector<host::Filter> filters = filtersOf(chain, frame);
        filters.front().setInput(input);
        for (std::size_t i = 1; i < filters.size(); ++i)
            filters[i].connectFrom(filters[i - 1]);
        return filters;
    };
    std::vector<host::Filter> kept = connected();
    std::vector<host::Filter> inPlace = connected();
    const EffectHostPicture source = pictureOf(input);

    std::vector<double> one;
    std::vector<double> times[3];
    for (int round = -2; round < rounds; ++round) {
        const double each = secondsOf([&] {
            for (host::Filter& filter : alone)
                filter.run();
        }) / double(alone.size());
        const double filled = secondsOf([&] { kept.back().run(); });
        const double replaced = secondsOf([&] { inPlace.back().runInto(output.handle()); });
        EffectHostFrame asLook{&source, 1, pictureOf(output), 0, 25, 5, 0, nullptr};
        const double hosted = secondsOf([&] { succeed(EffectHostRunFrame(look.get(), &asLook)); });
        if (round < 0)
            continue;
        one.push_back(each);
        times[0].push_back(filled);
        times[1].push_back(replaced);
        times[2].push_back(hosted);
    }
    const double single = std::ranges::min(one);
    std::printf("%-8s %5up %8d %10.3f", chain.name, frame.height, threads, single * 1e3);
    for (std::vector<double>& way : times) {
        const double seconds = std::ranges::min(way);
        std::printf(" %10.3f %5.2f", seconds * 1e3, seconds / single);
    }
    std::printf("\n");
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: effectengine_chain_bench RESOURCES [ROUNDS]\n");
        return 2;
    }
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 30;
    succeed(EffectHostOpen(argv[1], nullptr));
    std::printf("%-8s %6s %8s %10s %16s %16s %16s\n", "chain", "rows", "threads", "one, ms",
        "DoFilter, x one", "DoFilterEx", "look");
    for (const Chain& chain : kChains)
        for (const host::FrameSize frame : kFrames)
            for (const int threads : {1, 2})
                measure(chain, frame, threads, rounds);
    EffectHostClose();
    return 0;
}
