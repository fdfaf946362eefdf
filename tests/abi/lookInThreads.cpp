// A host with threads: runs of different looks, and of one look, work at the same time and give the bytes
// that they give alone; errors belong to the thread that made them; opening and closing are counted over all
// threads.
#include "check.h"
#include "lookOwners.h"

#include <atomic>
#include <cstring>
#include <thread>

namespace {

constexpr Size kSize{61, 40};
constexpr int kFrames = 12;

/// A chain over every frame, an effect that remembers frames, and two parameters in motion.
constexpr const char* kMoving = R"({"effectengine": 1, "nodes": [
    {"id": "soft", "effect": "glow"},
    {"id": "trail", "effect": "echo", "inputs": ["soft"]},
    {"id": "hue", "effect": "hue-shift", "inputs": ["trail"],
     "parameters": {"Hue": {"keyframes": [{"time": 0, "value": 10}, {"time": 0.5, "value": 90}]}}}]})";
constexpr const char* kJoined = R"({"effectengine": 1, "nodes": [
    {"id": "a", "effect": "am-cold"},
    {"id": "b", "effect": "blur", "inputs": ["source"]},
    {"id": "change", "effect": "push", "inputs": ["a", "b"], "start": 0, "duration": 0.5}]})";

std::vector<Pixels> framesOf(const Look& look, Size size)
{
    const Run run = startRun(look, size.width, size.height);
    std::vector<Pixels> frames;
    for (int i = 0; i < kFrames; ++i)
        frames.push_back(runFrame(run, {painted(size, unsigned(i))}, size, i));
    return frames;
}

/// Calls work(0) and work(1), each on a thread of its own, at the same time.
template <class Work> void onTwoThreads(Work work)
{
    std::atomic<int> ready = 0;
    const auto start = [&](int number) {
        ++ready;
        while (ready < 2)
            std::this_thread::yield();
        work(number);
    };
    std::thread second(start, 1);
    start(0);
    second.join();
}

int differentLooks()
{
    const Look looks[2]{makeLook(EFFECTHOST_LOOK_JSON, kMoving), makeLook(EFFECTHOST_LOOK_JSON, kJoined)};
    const std::vector<Pixels> alone[2]{framesOf(looks[0], kSize), framesOf(looks[1], kSize)};
    for (int round = 0; round < 5; ++round) {
        std::vector<Pixels> together[2];
        onTwoThreads([&](int i) { together[i] = framesOf(looks[i], kSize); });
        CHECK(together[0] == alone[0] && together[1] == alone[1]);
    }
    return 0;
}

int oneLook()
{
    constexpr Size kOther{24, 33};
    const Look look = makeLook(EFFECTHOST_LOOK_JSON, kMoving);
    const std::vector<Pixels> alone[2]{framesOf(look, kSize), framesOf(look, kOther)};
    for (int round = 0; round < 5; ++round) {
        // A look from the command line's words is completed by its first run: two of them come at once.
        const Look fresh = makeLook(EFFECTHOST_LOOK_EFFECT, "blur");
        std::vector<Pixels> together[2];
        const EffectHostLookInfo* infos[2]{};
        onTwoThreads([&](int i) {
            startRun(fresh, 8, 8);
            succeed(EffectHostGetLookInfo(fresh.get(), &infos[i]), "EffectHostGetLookInfo");
            together[i] = framesOf(look, i == 0 ? kSize : kOther);
        });
        CHECK(together[0] == alone[0] && together[1] == alone[1]);
        CHECK(infos[0]->nodeCount == 1 && infos[0]->json == infos[1]->json);
    }
    return 0;
}

int errorsBelongToTheirThread()
{
    std::atomic<int> wrong = 0;
    onTwoThreads([&](int i) {
        const std::string word = i == 0 ? "no-such-effect" : "none-of-these";
        const EffectHostEffect* effect = nullptr;
        for (int round = 0; round < 200; ++round) {
            wrong += EffectHostFindEffect(word.c_str(), &effect) != EFFECTHOST_BAD_CONTENT;
            wrong += !std::strstr(EffectHostLastError(), word.c_str());
        }
    });
    CHECK(wrong == 0);
    return 0;
}

int openingIsCounted(const char* resources)
{
    onTwoThreads([&](int) {
        for (int round = 0; round < 20; ++round) {
            succeed(EffectHostOpen(resources, nullptr), "EffectHostOpen");
            const EffectHostEffect* const* effects = nullptr;
            std::size_t count = 0;
            succeed(EffectHostGetEffects(&effects, &count), "EffectHostGetEffects");
            const char* json = nullptr;
            succeed(EffectHostGetCatalogue("blur", &json), "EffectHostGetCatalogue");
            EffectHostClose();
        }
    });
    const EffectHostEffect* effect = nullptr;
    CHECK(EffectHostFindEffect("blur", &effect) == EFFECTHOST_NO_ENGINE);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    CHECK(argc == 3);
    CHECK(openingIsCounted(argv[1]) == 0);
    CHECK(EffectHostOpen(argv[1], argv[2]) == EFFECTHOST_OK);
    if (differentLooks() || oneLook() || errorsBelongToTheirThread())
        return 1;
    EffectHostClose();
    return openingIsCounted(argv[1]);
}
