// Clips in parts: graphs that may be cut give the same bytes in parts as in one run.
#include "host/parts.h"

#include "core/Clock.h"
#include "engine/effectList.h"
#include "host/EffectGraph.h"
#include "support/EngineFixture.h"
#include "support/paths.h"

#include <algorithm>
#include <vector>

namespace {

constexpr unsigned kWidth = 40;
constexpr unsigned kHeight = 30;
constexpr long long kFrames = 24;
constexpr long long kPartBegins = 15;

using Bytes = std::vector<unsigned char>;

// A different picture for every frame and source.
void draw(const host::Image& image, long long frame, unsigned source)
{
    unsigned state = unsigned(frame) * 2654435761u + source * 40503u + 1;
    for (unsigned char& byte : image.bytes()) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<unsigned char>(state >> 24);
    }
}

class Parts : public test::EngineWithoutGpu {
protected:
    Parts() { core::pinTime(7); }
    ~Parts() override { core::pinTime({}); }

    /// The results for frames first to last, the graph made anew and shown `preRoll` frames before them.
    static std::vector<Bytes> render(
        const host::GraphDescription& description, long long first, long long last, long long preRoll)
    {
        host::EffectGraph graph(description, kWidth, kHeight);
        std::vector<host::Image> sources;
        for (unsigned i = 0; i < graph.sources(); ++i)
            sources.emplace_back(kWidth, kHeight);
        for (unsigned i = 0; i < graph.sources(); ++i)
            graph.setSource(sources[i], i);
        std::vector<Bytes> results;
        for (long long frame = std::max(0LL, first - preRoll); frame <= last; ++frame) {
            for (unsigned i = 0; i < graph.sources(); ++i)
                draw(sources[i], frame, i);
            const auto output =
                host::bytesOf(graph.run({.seconds = double(frame) / 25, .total = double(kFrames) / 25}));
            if (frame >= first)
                results.emplace_back(output.begin(), output.end());
        }
        return results;
    }

    static host::GraphDescription graphOf(std::initializer_list<const char*> effects)
    {
        host::GraphDescription description;
        for (const char* const effect : effects)
            description.append(effect);
        description.finish();
        return description;
    }
};

TEST_F(Parts, OfEveryEffectThatMayBeginAnywhereEqualTheWhole)
{
    int tried = 0;
    int withHistory = 0;
    for (const KEXSDK::EffectInfo& effect : listEffects()) {
        const host::GraphDescription graph = graphOf({effect.guid.c_str()});
        if (effect.needsGpu || !host::startBound(graph).empty())
            continue;
        const long long preRoll = host::preRollOf(graph);
        const std::vector<Bytes> whole = render(graph, 0, kFrames - 1, 0);
        const std::vector<Bytes> part = render(graph, kPartBegins, kFrames - 1, preRoll);
        for (std::size_t i = 0; i < part.size(); ++i)
            ASSERT_EQ(whole[kPartBegins + i], part[i]) << effect.name << ", frame " << kPartBegins + i;
        ++tried;
        withHistory += preRoll > 0;
    }
    EXPECT_GT(tried, 100);
    EXPECT_GT(withHistory, 0);
}

TEST_F(Parts, NeedThePreRollOfAllNodesOnThePath)
{
    const host::GraphDescription graph = graphOf({"delay-grab", "black-and-white", "delay-grab"});
    EXPECT_EQ(host::preRollOf(graph), 14);
    const std::vector<Bytes> whole = render(graph, 0, kFrames - 1, 0);
    const std::vector<Bytes> part = render(graph, kPartBegins, kFrames - 1, 14);
    const std::vector<Bytes> tooShort = render(graph, kPartBegins, kFrames - 1, 2);
    EXPECT_EQ(whole[kPartBegins], part[0]);
    EXPECT_NE(whole[kPartBegins], tooShort[0]);
}

TEST_F(Parts, AreRefusedForEffectsThatRememberEverythingOrDrawOn)
{
    EXPECT_EQ(host::startBound(graphOf({"hue-shift", "water-ripple"})),
        std::vector<std::string>{
            "node water-ripple (water-ripple) depends on every frame since the first one"});
    EXPECT_EQ(host::startBound(graphOf({"am-noise"})),
        std::vector<std::string>{"node am-noise (am-noise) draws new random numbers from frame to frame"});
    EXPECT_EQ(host::preRollOf(graphOf({"am-noise"})), host::kAllFrames);
    EXPECT_EQ(host::preRollOf(graphOf({"camcorder"})), host::kAllFrames)
        << "its light blinks by frames shown";
}

TEST_F(Parts, AreRefusedWhereAttributesOfParticlesMove)
{
    listShaderEffectsOf(test::kResourceDirectory);
    const auto scenes = listEffects();
    const auto scene = std::ranges::find(scenes, "particles", &KEXSDK::EffectInfo::family);
    ASSERT_NE(scene, scenes.end());
    const auto params = describeParameters(scene->guid);
    const auto attribute =
        std::ranges::find_if(params, [](const auto* param) { return param->name[0] == ':'; });
    ASSERT_NE(attribute, params.end());
    for (const bool moves : {false, true}) {
        host::GraphDescription graph = graphOf({scene->name.c_str()});
        std::vector<host::Keyframe> keyframes{{.time = 0, .value = std::vector<double>{1}}};
        if (moves)
            keyframes.push_back({.time = 1, .value = std::vector<double>{2}});
        graph.nodes[0].parameters.emplace_back(**attribute, host::TimeUnit::seconds, keyframes);
        EXPECT_EQ(host::preRollOf(graph) == host::kAllFrames, moves);
    }
    listShaderEffectsOf("");
}

} // namespace
