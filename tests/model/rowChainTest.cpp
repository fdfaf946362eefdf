// Chains that are evaluated strip by strip: whatever memory their pictures share, and whatever fails, they
// leave the bytes that one node after the other leaves.
#include "model/CSimpleEffect.h"
#include "model/RowWise.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

using KEXSDK::CEffectImage;

constexpr u32 kWidth = 512;
constexpr u32 kHeight = 150; // three strips
constexpr std::size_t kRowBytes = kWidth * 4;
constexpr std::size_t kBytes = kRowBytes * kHeight;

// Mixes its input, a second picture and the row's number; by rows, or as a whole.
class Mixer final : public KEXSDK::CSimpleEffect, public KEXSDK::RowWise {
public:
    Mixer(bool byRows, u8 salt) : CSimpleEffect(kWidth, kHeight), byRows_(byRows), salt_(salt) { }

    u32 getInputCount() override { return 1; }
    void run() override
    {
        ++runs;
        if (const CEffectImage* const source = getInputImage(0))
            processRows(source->view(), getOutputImage()->view(), 0);
        if (fails)
            throw std::runtime_error("as asked");
    }
    bool beginRows() override
    {
        if (fails)
            throw std::runtime_error("as asked");
        begun += byRows_;
        return byRows_;
    }
    void processRows(pixels::ConstView src, pixels::View dst, int first) const override
    {
        for (int y = 0; y < dst.height(); ++y) {
            const u8* const from = reinterpret_cast<const u8*>(src.row(y).data());
            const u8* const with = second ? second->pixels() + std::size_t(first + y) * kRowBytes : nullptr;
            u8* const to = reinterpret_cast<u8*>(dst.row(y).data());
            for (std::size_t i = 0; i < kRowBytes; ++i)
                to[i] = u8(3 * from[i] + (with ? with[i] : 0) + salt_ + first + y);
        }
    }
    pixels::ConstView secondPicture() const override { return second ? second->view() : pixels::View(); }
    void endRows() override { ++ended; }

    CEffectImage* second = nullptr;
    bool fails = false;
    int runs = 0;
    int begun = 0;
    int ended = 0;

private:
    bool byRows_;
    u8 salt_;
};

// A chain of nodes over pictures that lie anywhere in one piece of memory, some upon each other.
struct Wiring {
    static constexpr std::size_t kNodes = 4;
    std::size_t source;
    std::size_t outputs[kNodes];
    std::size_t seconds[kNodes];
    bool has[kNodes];
    bool external;
};

std::vector<u8> evaluated(const Wiring& wiring, bool byRows, int& strips)
{
    std::vector<u8> memory(6 * kBytes);
    u32 state = 3;
    for (u8& byte : memory)
        byte = u8((state = state * 1664525u + 1013904223u) >> 24);
    const auto imageAt = [&](std::size_t place) {
        return std::make_unique<CEffectImage>(kWidth, kHeight, 0, 32, memory.data() + place);
    };
    std::vector<std::unique_ptr<CEffectImage>> images;
    std::vector<std::unique_ptr<Mixer>> nodes;
    images.push_back(imageAt(wiring.source));
    for (std::size_t i = 0; i < Wiring::kNodes; ++i) {
        nodes.push_back(std::make_unique<Mixer>(byRows, u8(i * 50)));
        images.push_back(imageAt(wiring.outputs[i]));
        nodes[i]->setInputImage(images[0].get(), 0);
        // From now on the node draws there.
        EXPECT_TRUE(nodes[i]->evaluate(images.back().get()));
        if (wiring.has[i]) {
            images.push_back(imageAt(wiring.seconds[i]));
            nodes[i]->second = images.back().get();
        }
        if (i > 0)
            nodes[i]->connect(nodes[i - 1].get(), 0);
    }
    const auto target = imageAt(wiring.outputs[0]);
    EXPECT_TRUE(nodes.back()->evaluate(wiring.external ? target.get() : nullptr));
    for (const auto& node : nodes) {
        EXPECT_EQ(node->begun, byRows ? 2 : 0);
        EXPECT_EQ(node->ended, node->begun);
        EXPECT_EQ(node->runs, byRows ? 0 : 2);
        strips += node->begun;
    }
    return memory;
}

TEST(RowChains, LeaveTheBytesOfNodeAfterNodeWhereverTheirPicturesLie)
{
    std::mt19937 random(11);
    int strips = 0;
    for (int round = 0; round < 60; ++round) {
        // Mostly whole pictures apart or upon each other, sometimes some rows askew.
        const auto place = [&] {
            return random() % 5 * kBytes + (random() % 8 == 0 ? random() % kHeight * kRowBytes : 0);
        };
        Wiring wiring{};
        wiring.source = place();
        wiring.external = random() % 4 == 0;
        for (std::size_t i = 0; i < Wiring::kNodes; ++i) {
            wiring.outputs[i] = place();
            wiring.seconds[i] = place();
            wiring.has[i] = random() % 3 == 0;
        }
        EXPECT_TRUE(evaluated(wiring, true, strips) == evaluated(wiring, false, strips)) << round;
    }
    EXPECT_GT(strips, 0);
}

TEST(RowChains, EndTheirNodesAndDrawWhatComesBeforeAFailure)
{
    CEffectImage input(kWidth, kHeight, 0, 32, nullptr);
    for (const bool lastByRows : {true, false}) {
        Mixer a(true, 7);
        Mixer b(true, 1);
        Mixer c(lastByRows, 1);
        a.setInputImage(&input, 0);
        b.connect(&a, 0);
        c.connect(&b, 0);
        c.fails = true;
        EXPECT_THROW(c.evaluate(nullptr), std::runtime_error);
        EXPECT_EQ(b.getOutputImage()->pixels()[kRowBytes * 2], u8(3 * (7 + 2) + 1 + 2));
        EXPECT_EQ(a.begun + b.begun, a.ended + b.ended);
        c.fails = false;
        EXPECT_TRUE(c.evaluate(nullptr));
        EXPECT_EQ(a.begun, a.ended);
    }
}

} // namespace
