// Filter nodes: outputs, chains, pass-through, external images, odd graphs.
#include "model/CPureCEffect.h"

#include <gtest/gtest.h>

#include <bit>
#include <memory>

namespace {

using KEXSDK::CEffectImage;

// A node that adds one to every byte and counts its runs.
class AddOne final : public KEXSDK::CPureCEffect {
public:
    explicit AddOne(u32 w = 2, u32 h = 2) : CPureCEffect(w, h) { }
    void processFrame(const u8* src, u8* dst) override
    {
        ++runs;
        for (u32 i = 0; i < width() * height() * 4; ++i)
            dst[i] = u8(src[i] + 1);
    }
    int runs = 0;
};

struct Picture : CEffectImage {
    explicit Picture(u8 value, u32 w = 2, u32 h = 2) : CEffectImage(w, h, 0, 32, nullptr)
    {
        std::fill_n(pixels(), byteSize(), value);
    }
};

TEST(Evaluation, OutputIsMadeOnceAndReused)
{
    AddOne node;
    Picture input(10);
    node.setInputImage(&input, 0);
    EXPECT_EQ(node.getOutputImage(), nullptr);
    ASSERT_TRUE(node.evaluate(nullptr));
    CEffectImage* const output = node.getOutputImage();
    EXPECT_EQ(output->pixels()[15], 11);
    ASSERT_TRUE(node.evaluate(nullptr));
    EXPECT_EQ(node.getOutputImage(), output);
}

TEST(Evaluation, WithoutAnyInputItFailsButTheBlankOutputExists)
{
    AddOne node;
    EXPECT_FALSE(node.evaluate(nullptr));
    ASSERT_NE(node.getOutputImage(), nullptr);
    EXPECT_EQ(node.getOutputImage()->pixels()[0], 0);
    EXPECT_EQ(node.runs, 0);
}

TEST(Evaluation, InputOneAloneSucceedsAndLeavesTheOutput)
{
    AddOne node;
    Picture input(10);
    node.setInputImage(&input, 1);
    EXPECT_TRUE(node.evaluate(nullptr));
    EXPECT_EQ(node.getOutputImage()->pixels()[0], 0);
}

TEST(Evaluation, ChainsRunUpstreamFirstAndOncePerConnection)
{
    AddOne a;
    AddOne b;
    Picture input(10);
    a.setInputImage(&input, 0);
    b.connect(&a, 0);
    b.connect(&a, 1);
    ASSERT_TRUE(b.evaluate(nullptr));
    EXPECT_EQ(b.getOutputImage()->pixels()[0], 12);
    EXPECT_EQ(b.getInputImage(0), a.getOutputImage());
    EXPECT_EQ(a.runs, 2);
}

TEST(Evaluation, DisabledNodePassesInputZeroThrough)
{
    AddOne node;
    Picture input(10);
    node.setInputImage(&input, 0);
    node.setParamIntValue("kex_effect_enable", 0);
    ASSERT_TRUE(node.evaluate(nullptr));
    EXPECT_EQ(node.getOutputImage()->pixels()[7], 10);
    EXPECT_EQ(node.runs, 0);

    Picture external(1);
    ASSERT_TRUE(node.evaluate(&external));
    EXPECT_EQ(external.pixels()[7], 10);
    EXPECT_NE(node.getOutputImage(), &external) << "not adopted while disabled";

    Picture large(50, 3, 2);
    node.setInputImage(&large, 0);
    ASSERT_TRUE(node.evaluate(nullptr));
    EXPECT_EQ(node.getOutputImage()->pixels()[7], 10) << "another size leaves the output";

    AddOne other;
    other.setInputImage(&input, 0);
    other.setParamFloatValue("kex_effect_enable", 1.0f);
    other.evaluate(nullptr);
    EXPECT_EQ(other.runs, 0) << "a switch of another type counts as off";
}

TEST(Evaluation, AnExternalImageBecomesTheOutputAndTheOldOneStaysReadable)
{
    AddOne node;
    Picture input(10);
    node.setInputImage(&input, 0);
    node.evaluate(nullptr);
    const u8* const before = node.getOutputImage()->pixels();
    Picture external(0);
    ASSERT_TRUE(node.evaluate(&external));
    EXPECT_EQ(external.pixels()[0], 11);
    std::fill_n(input.pixels(), input.byteSize(), u8(20));
    ASSERT_TRUE(node.evaluate(nullptr));
    EXPECT_EQ(external.pixels()[0], 21);
    EXPECT_EQ(before[0], 11);

    Picture wrongSize(7, 2, 3);
    EXPECT_FALSE(node.evaluate(&wrongSize));
    EXPECT_EQ(wrongSize.pixels()[0], 7);
    EXPECT_EQ(node.getOutputImage(), &external);
}

// Hosts hand in a new target for every frame and release it afterwards. Whatever nodes they switch on or off
// between frames, only images of the running evaluation are touched.
TEST(Evaluation, ChainsInFrontOfANewTargetEveryFrameReadWhatTheirNodesWrote)
{
    constexpr int kNodes = 3;
    for (int first = 0; first < 1 << kNodes; ++first)
        for (int second = 0; second < 1 << kNodes; ++second) {
            AddOne nodes[kNodes];
            Picture input(10);
            nodes[0].setInputImage(&input, 0);
            for (int i = 1; i < kNodes; ++i)
                nodes[i].connect(&nodes[i - 1], 0);
            for (const int enabled : {first, second, first}) {
                for (int i = 0; i < kNodes; ++i)
                    nodes[i].setParamIntValue("kex_effect_enable", enabled >> i & 1);
                const auto target = std::make_unique<Picture>(u8(99));
                ASSERT_TRUE(nodes[kNodes - 1].evaluate(target.get()));
                EXPECT_EQ(target->pixels()[5], 10 + std::popcount(unsigned(enabled)))
                    << "enabled: " << enabled << " of " << first << ", " << second;
            }
        }
}

TEST(Evaluation, ATargetThatIsGoneIsNotReadAgain)
{
    AddOne a;
    AddOne b;
    auto input = std::make_unique<Picture>(u8(10));
    a.setInputImage(input.get(), 0);
    b.connect(&a, 0);
    ASSERT_TRUE(b.evaluate(std::make_unique<Picture>(u8(0)).get()));

    // A node that has lost its input writes nothing, and hands on nothing.
    AddOne empty;
    b.connect(&empty, 0);
    ASSERT_TRUE(b.evaluate(std::make_unique<Picture>(u8(0)).get()));
    Picture target(77);
    ASSERT_TRUE(b.evaluate(&target));
    EXPECT_EQ(target.pixels()[5], 77);

    // A cycle goes round in the target of the running evaluation, also through a node of another size.
    AddOne wide(3, 2);
    for (AddOne* const between : {&a, &wide}) {
        b.connect(between, 0);
        between->connect(&b, 0);
        ASSERT_TRUE(b.evaluate(std::make_unique<Picture>(u8(0)).get()));
        ASSERT_TRUE(b.evaluate(std::make_unique<Picture>(u8(0)).get()));
    }
}

TEST(Evaluation, ACycleEndsAndUsesTheCurrentOutput)
{
    AddOne a;
    AddOne b;
    a.connect(&b, 0);
    b.connect(&a, 0);
    EXPECT_TRUE(b.evaluate(nullptr));
    EXPECT_EQ(b.getOutputImage()->pixels()[0], 2) << "0, plus one by a, plus one by b";
    EXPECT_TRUE(b.evaluate(nullptr));
    EXPECT_EQ(b.getOutputImage()->pixels()[0], 4);
}

TEST(Evaluation, DisconnectingDropsOnlyWhatTheConnectionFed)
{
    AddOne b;
    Picture own(40);
    {
        AddOne a;
        Picture input(10);
        a.setInputImage(&input, 0);
        b.connect(&a, 0);
        ASSERT_TRUE(b.evaluate(nullptr));
    }
    b.connect(nullptr, 0); // the upstream node is gone already
    EXPECT_FALSE(b.evaluate(nullptr));
    AddOne c;
    b.connect(&c, 0);
    b.setInputImage(&own, 0);
    b.connect(nullptr, 0);
    EXPECT_TRUE(b.evaluate(nullptr));
    EXPECT_EQ(b.getOutputImage()->pixels()[0], 41);

    // The host's image may have the address of a target that the connection fed before.
    AddOne upstream;
    AddOne reader;
    Picture reused(40);
    upstream.setInputImage(&own, 0);
    reader.connect(&upstream, 0);
    ASSERT_TRUE(reader.evaluate(&reused));
    reader.setInputImage(&reused, 0);
    reader.connect(nullptr, 0);
    EXPECT_TRUE(reader.evaluate(nullptr));
}

TEST(Evaluation, AnInputOfAnotherSizeCountsAsMissing)
{
    AddOne node;
    Picture small(10, 1, 2);
    node.setInputImage(&small, 0);
    EXPECT_TRUE(node.evaluate(nullptr));
    EXPECT_EQ(node.runs, 0);
    EXPECT_EQ(node.getOutputImage()->pixels()[0], 0);
}

TEST(Image, RowsReverseAroundTheMiddle)
{
    CEffectImage image(1, 3, 0, 32, nullptr);
    for (int i = 0; i < 12; ++i)
        image.pixels()[i] = u8(i / 4);
    image.reverseRows();
    EXPECT_EQ(image.pixels()[0], 2);
    EXPECT_EQ(image.pixels()[4], 1);
    EXPECT_EQ(image.pixels()[8], 0);
}

} // namespace
