// Graphs over two small pictures, without a GPU.
#pragma once

#include "core/Clock.h"
#include "core/Random.h"
#include "effects/am/looks/brokenTelevision.h"
#include "effects/cpu/WaterSurface.h"
#include "host/EffectGraph.h"
#include "support/EngineFixture.h"
#include "support/FilesInMemory.h"

#include <algorithm>
#include <random>

namespace test {

using Bytes = std::vector<u8>;

/// A finished graph of these nodes, with paths that count from the directory.
inline host::GraphDescription parsed(const std::string& nodes, const std::string& directory = "/looks")
{
    return host::parseGraph(R"({"effectengine": 2, "nodes": [)" + nodes + "]}", "look.json", directory);
}

inline host::FrameTime frameAt(int frame) { return {.seconds = frame / 25.0, .total = 2}; }

inline Bytes copyOf(CEffectImage* image)
{
    const auto bytes = host::bytesOf(image);
    return {bytes.begin(), bytes.end()};
}

/// Makes what all nodes of the thread or the process share what it is in a fresh process.
inline void restartSharedState()
{
    pixels::threadRandom().seed(1);
    pixels::restartRain();
    KEXSDK::am::restartTelevision();
}

class GraphFixture : public EngineWithoutGpu {
protected:
    static constexpr unsigned kWidth = 33;
    static constexpr unsigned kHeight = 17;

    // Hides the fixture's function of this name: here effects and masks find files.
    static void SetUpTestSuite()
    {
        files = {};
        useFilesInMemory();
        ASSERT_EQ(InitializeEngine("./", nullptr), 0u);
    }
    void SetUp() override
    {
        core::pinTime(1'700'000'000);
        restartSharedState();
        paint(1);
    }
    void TearDown() override { core::pinTime(std::nullopt); }

    /// Fills both pictures with noise, alpha included.
    void paint(unsigned seed)
    {
        std::mt19937 random(seed);
        for (const host::Image* const image : {&first_, &second_})
            std::ranges::generate(image->bytes(), [&] { return u8(random()); });
    }
    static void setAlpha(const host::Image& image, u8 value)
    {
        for (std::size_t i = 3; i < image.bytes().size(); i += 4)
            image.bytes()[i] = value;
    }
    const host::Image& first() const { return first_; }
    const host::Image& second() const { return second_; }
    Bytes firstBytes() const { return copyOf(first_.handle()); }

    host::EffectGraph graphOf(const host::GraphDescription& description)
    {
        host::EffectGraph graph(description, kWidth, kHeight);
        for (unsigned i = 0; i < graph.sources(); ++i)
            graph.setSource(i == 0 ? first_ : second_, i);
        return graph;
    }
    Bytes showGraph(const host::GraphDescription& description, host::FrameTime time = {})
    {
        auto graph = graphOf(description);
        return copyOf(graph.run(time));
    }
    Bytes show(const std::string& nodes, host::FrameTime time = {}) { return showGraph(parsed(nodes), time); }

private:
    host::Image first_{kWidth, kHeight};
    host::Image second_{kWidth, kHeight};
};

} // namespace test
