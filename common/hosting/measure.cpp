// Painted frames, warmed-up effects, and times of memcpy.
#include "hosting/measure.h"

#include "hosting/exampleValues.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <random>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWarmUpFrames = 40;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Makes the compiler believe that the memory is read, so that it does not leave the copy out.
void keep(const void* memory) { asm volatile("" : : "g"(memory) : "memory"); }

} // namespace

void paint(const Image& image, unsigned seed)
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

double median(std::vector<double>& times)
{
    const auto middle = times.begin() + std::ptrdiff_t(times.size() / 2);
    std::ranges::nth_element(times, middle);
    return *middle;
}

double copySeconds(FrameSize frame)
{
    static std::map<std::pair<unsigned, unsigned>, double> known;
    const auto [entry, fresh] = known.try_emplace({frame.width, frame.height});
    if (!fresh)
        return entry->second;
    const std::size_t size = std::size_t(frame.width) * frame.height * 4;
    std::vector<unsigned char> from(size, 1);
    std::vector<unsigned char> to(size, 2);
    std::vector<double> runs(31);
    for (double& run : runs) {
        const auto start = Clock::now();
        std::memcpy(to.data(), from.data(), size);
        keep(to.data());
        run = secondsSince(start);
    }
    return entry->second = median(runs);
}

EffectRun::EffectRun(
    const KEXSDK::EffectInfo& effect, std::span<const KEXSDK::ParamInfo* const> parameters, FrameSize frame)
    : filter_(effect.guid, int(frame.width), int(frame.height))
{
    setExampleValues(filter_, parameters, frame.width, frame.height);
    for (unsigned i = 0; i < effect.inputs; ++i) {
        paint(inputs_.emplace_back(frame.width, frame.height), i);
        filter_.setInput(inputs_.back(), i);
    }
    filter_.set(kEffectTotalTime, 2.0f);
    filter_.set(kEffectCurrentTime, 1.0f);
    for (int i = 0; i < (effect.history.frames == 0 ? 1 : kWarmUpFrames); ++i)
        filter_.run();
}

double EffectRun::once()
{
    const auto start = Clock::now();
    filter_.run();
    return secondsSince(start);
}

} // namespace host
