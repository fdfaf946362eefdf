// Effects beside what other libraries have for the same purpose: medians of frames made by turns in one
// process.
#include "compare/Peer.h"
#include "engine/effectList.h"
#include "hosting/exampleValues.h"

#include <tbb/global_control.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <thread>

namespace compare {

double blurDeviation(host::FrameSize size)
{
    const double radius = std::floor(std::max(size.width, size.height) / 100.0);
    return std::sqrt(((radius + 1) * (radius + 1) - 1) / 6);
}

std::string exampleTable()
{
    KEXSDK::ParamInfo file{"", KEXSDK::ParamType::filePath, ""};
    return std::get<std::string>(host::exampleValue(file, 1, 1));
}

namespace {

constexpr host::FrameSize kFrame{1920, 1080};
constexpr int kRounds = 41;

double secondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void compareEffect(const KEXSDK::EffectInfo& effect, const std::vector<Peer>& peers)
{
    host::EffectRun run(effect, describeParameters(effect.guid), kFrame);
    std::vector<double> own;
    std::vector<std::vector<double>> theirs(peers.size());
    for (int round = -3; round < kRounds; ++round) { // the first few fill caches and pools
        const double seconds = run.once();
        if (round >= 0)
            own.push_back(seconds);
        for (std::size_t i = 0; i < peers.size(); ++i) {
            const double theirSeconds = secondsOf(peers[i].once);
            if (round >= 0)
                theirs[i].push_back(theirSeconds);
        }
    }
    const double ours = host::median(own);
    for (std::size_t i = 0; i < peers.size(); ++i) {
        const double peer = host::median(theirs[i]);
        std::printf("%-16s %8.2f   %-8s %8.2f %7.1f   %s\n", i ? "" : effect.name.c_str(), ours * 1e3,
            peers[i].library.c_str(), peer * 1e3, peer / ours, peers[i].call.c_str());
    }
    std::fflush(stdout);
}

void compareAll()
{
    const int threads = int(std::max(1u, std::thread::hardware_concurrency()));
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(threads));
    const host::Image first(kFrame.width, kFrame.height);
    const host::Image second(kFrame.width, kFrame.height);
    host::paint(first, 0);
    host::paint(second, 1);
    const Frames frames{kFrame, {first.bytes(), second.bytes()}};

    std::vector<Peer> peers = ffmpegPeers(frames, threads);
    const auto append = [&](std::vector<Peer> more) { std::ranges::move(more, std::back_inserter(peers)); };
#ifdef EFFECTENGINE_COMPARE_OPENCV
    append(openCvPeers(frames, threads));
#endif
#ifdef EFFECTENGINE_COMPARE_VIPS
    append(vipsPeers(frames, threads));
#endif
    std::printf("%u x %u, %d threads each; milliseconds a frame, and the peer's part of ours\n\n%-16s %8s   "
                "%-8s %8s %7s   %s\n",
        kFrame.width, kFrame.height, threads, "effect", "ms", "peer", "ms", "ratio", "what the peer does");
    for (const KEXSDK::EffectInfo& effect : listEffects()) {
        std::vector<Peer> beside;
        std::ranges::copy_if(
            peers, std::back_inserter(beside), [&](const Peer& peer) { return peer.effect == effect.name; });
        if (!beside.empty())
            compareEffect(effect, beside);
    }
}

} // namespace
} // namespace compare

int main()
{
    setenv("EFFECTENGINE_PATH", "auto", 0); // as the tool and the host library have it
    try {
        const host::Engine engine(EFFECTENGINE_RESOURCE_DIR, nullptr);
        compare::compareAll();
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
