// How long the texture of a drawn picture is at hand: while nodes of the running evaluation may read it.
#include "model/CSimpleEffect.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace {

using KEXSDK::CEffectImage;

/// A stand-in for a node that draws on the GPU: its output gets a texture of its own.
class Drawing final : public KEXSDK::CSimpleEffect {
public:
    Drawing() : CSimpleEffect(2, 2) { }
    u32 getInputCount() override { return 1; }
    void run() override
    {
        if (const CEffectImage* const input = getInputImage(0))
            readsTexture = input->record()->sharedBuffer != nullptr;
        if (whileRunning)
            whileRunning();
        const auto texture = std::make_shared<int>();
        getOutputImage()->record()->sharedBuffer = {texture, reinterpret_cast<Ogre::Texture*>(texture.get())};
    }

    bool readsTexture = false;
    std::function<void()> whileRunning;
};

bool hasTexture(KEXSDK::CSimpleEffect& node)
{
    return node.getOutputImage()->record()->sharedBuffer != nullptr;
}

class TextureLease : public testing::Test {
protected:
    TextureLease()
    {
        first.setInputImage(&input, 0);
        second.connect(&first, 0);
    }

    CEffectImage input{2, 2, 0, 32, nullptr};
    Drawing first;
    Drawing second;
};

TEST_F(TextureLease, LastsUntilTheReaderHasRun)
{
    for (int frame = 0; frame < 2; ++frame) {
        ASSERT_TRUE(second.evaluate(nullptr));
        EXPECT_FALSE(first.readsTexture);
        EXPECT_TRUE(second.readsTexture);
        EXPECT_FALSE(hasTexture(first));
        EXPECT_FALSE(hasTexture(second));
    }
}

TEST_F(TextureLease, GoesFromNodeToNodeInOneImage)
{
    CEffectImage target(2, 2, 0, 32, nullptr);
    Drawing third;
    third.connect(&second, 0);
    second.setParamIntValue("kex_effect_enable", 0); // what it is handed is what it hands on
    ASSERT_TRUE(third.evaluate(&target));
    EXPECT_TRUE(third.readsTexture);
    EXPECT_EQ(target.record()->sharedBuffer, nullptr);
}

TEST_F(TextureLease, IsHeldByWhoeverEvaluatesInsideARun)
{
    {
        const auto evaluation = second.evaluateForReader(nullptr);
        EXPECT_FALSE(hasTexture(first));
        EXPECT_TRUE(hasTexture(second));
    }
    EXPECT_FALSE(hasTexture(second));
}

TEST_F(TextureLease, EndsWhereMemoryIsWrittenAndWhereARunFails)
{
    second.whileRunning = [&] {
        first.getOutputImage()->reverseRows();
        EXPECT_FALSE(hasTexture(first));
    };
    ASSERT_TRUE(second.evaluate(nullptr));
    second.whileRunning = [] { throw std::runtime_error("no memory"); };
    EXPECT_THROW(second.evaluate(nullptr), std::runtime_error);
    EXPECT_TRUE(second.readsTexture);
    EXPECT_FALSE(hasTexture(first)) << "the host may write it now";
}

} // namespace
