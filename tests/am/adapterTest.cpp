// The node of the numeric effect library: its parameters, its block, its texture.
#include "am/AmFixture.h"
#include "core/Log.h"
#include "effects/am/library/CSimpleAmEffect.h"
#include "effects/am/library/amCatalog.h"
#include "support/EngineFixture.h"
#include "support/allocationCount.h"
#include "support/inChild.h"
#include "support/paths.h"

#include <cmath>
#include <filesystem>
#include <fstream>

namespace {

using namespace KEXSDK;
using pixels::Bgra;
using test::Am;

class Node : public CSimpleAmEffect {
public:
    Node(Am id, u32 width = 640, u32 height = 480, const char* texture = nullptr)
        : CSimpleAmEffect(id, width, height, texture)
    {
    }
    AmEffectParams& block() { return *params; }
};

TEST(AmNode, DeclaresFourteenParametersWithTheValuesOfTheBlock)
{
    Node node("snow");
    EXPECT_EQ(node.GetParamCount(), 3u + 14u);
    for (const char* name : {"PositionX", "PositionY", "Percent", "Radius"})
        EXPECT_EQ(node.getParamInt(name, -1), 50) << name;
    for (const char* name : {"Red", "Gleen", "Blue"})
        EXPECT_EQ(node.getParamInt(name, -1), 0) << name;
    EXPECT_EQ(node.getParamInt("Direction", -1), 1);
    EXPECT_EQ(node.getParamFloat("DecolorPosX", -1), 5000.0f);
    EXPECT_EQ(node.getParamFloat("DecolorPosY", -1), 5000.0f);
    EXPECT_EQ(node.getParamFloat("LeftPos", -1), 0.0f);
    EXPECT_EQ(node.getParamFloat("RightPos", -1), 100.0f / 640);
    EXPECT_EQ(node.getParamFloat("BottomPos", -1), 100.0f / 480);
    EXPECT_EQ(node.block().frameRate, 25.0f);
    EXPECT_EQ(node.getInputCount(), 1u);
    EXPECT_EQ(Node("merge-image").getInputCount(), 1u);
}

TEST(AmNode, ParametersReachTheBlockBeforeEveryRun)
{
    Node node("gray-scale");
    node.setParamIntValue("PositionX", 1);
    node.setParamIntValue("PositionY", -2);
    node.setParamFloatValue("DecolorPosX", 2550);
    node.setParamFloatValue("DecolorPosY", 25);
    node.setParamIntValue("Direction", 3);
    node.setParamIntValue("Percent", 4);
    node.setParamIntValue("Red", 0x105);
    node.setParamIntValue("Gleen", 6);
    node.setParamIntValue("Blue", -1);
    node.setParamIntValue("Radius", 7);
    node.setParamFloatValue("LeftPos", 0.25f);
    node.setParamFloatValue("TopPos", 0.1f);
    node.setParamFloatValue("RightPos", std::numeric_limits<float>::quiet_NaN());
    node.setParamFloatValue("BottomPos", 1e30f);
    node.updateParams();
    const AmEffectParams& b = node.block();
    EXPECT_EQ(b.posX, 1);
    EXPECT_EQ(b.posY, -2);
    EXPECT_EQ(b.pickX, 25.5f);
    EXPECT_EQ(b.pickY, 0.25f);
    EXPECT_EQ(b.direction, 3);
    EXPECT_EQ(b.percent, 4);
    EXPECT_EQ(b.red, 5);
    EXPECT_EQ(b.green, 6);
    EXPECT_EQ(b.blue, 255);
    EXPECT_EQ(b.radius, 7);
    EXPECT_EQ(b.left, 160);
    EXPECT_EQ(b.top, 48);
    EXPECT_EQ(b.right, 0);
    EXPECT_EQ(b.bottom, std::numeric_limits<i32>::max());

    node.setParamFloatValue("Percent", 90); // of another type: reads as 0
    node.updateParams();
    EXPECT_EQ(b.percent, 0);

    CEffectImage input(640, 480, 0, 32, nullptr);
    node.setInputImage(&input, 0);
    node.evaluate(nullptr);
    EXPECT_FALSE(node.setParamFloatValue("Radius", 90)); // refused: the stored value stays
    node.updateParams();
    EXPECT_EQ(b.radius, 7);
}

TEST(AmNode, TheRoundVignetteTakesItsStrengthFromTheRadius)
{
    Node node("vignette-radius");
    node.setParamIntValue("Radius", 70);
    node.setParamIntValue("Percent", 20);
    node.updateParams();
    EXPECT_EQ(node.block().percent, 70);
    EXPECT_EQ(node.block().radius, 70);
}

TEST(AmNode, ChangedParametersMarkTheDisplacementMaps)
{
    const auto marked = [](Am id) {
        Node node(id, 8, 8);
        CEffectImage input(8, 8, 0, 32, nullptr);
        node.setInputImage(&input, 0);
        node.evaluate(nullptr);
        node.block().dirty = 0;
        node.updateParams();
        EXPECT_EQ(node.block().dirty, 0u);
        node.setParamIntValue("PositionX", 10);
        node.updateParams();
        return node.block().dirty;
    };
    EXPECT_EQ(marked("tunnel"), 12u);
    for (const Am id : {"enlarge", "narrow", "whirl"})
        EXPECT_EQ(marked(id), 0xFFFFFFFFu);
    EXPECT_EQ(marked("raindrop"), 0u);
    EXPECT_EQ(marked("gray-scale"), 0u);
}

TEST(AmNode, AppliesTheEffectToACopyOfItsInput)
{
    CEffectImage input(33, 17, 0, 32, nullptr);
    for (int y = 0; y < 17; ++y)
        for (Bgra& p : input.view().row(y))
            p = {1, 2, 3, 4};
    Node node("negative", 33, 17);
    EXPECT_FALSE(node.evaluate(nullptr)) << "no input";
    node.setInputImage(&input, 0);
    ASSERT_TRUE(node.evaluate(nullptr));
    EXPECT_EQ(node.getOutputImage()->view().at(32, 16), (Bgra{254, 253, 252, 4}));
    EXPECT_EQ(input.view().at(32, 16), (Bgra{1, 2, 3, 4}));
    ASSERT_TRUE(node.evaluate(&input)) << "in place";
    EXPECT_EQ(input.view().at(0, 0), (Bgra{254, 253, 252, 4}));

    Node unknown(70, 33, 17); // no effect of that id: a copy
    unknown.setInputImage(&input, 0);
    ASSERT_TRUE(unknown.evaluate(nullptr));
    EXPECT_EQ(unknown.getOutputImage()->view().at(5, 5), (Bgra{254, 253, 252, 4}));

    Node other("negative", 32, 17);
    other.setInputImage(&input, 0);
    ASSERT_TRUE(other.evaluate(nullptr));
    EXPECT_EQ(other.getOutputImage()->view().at(0, 0), (Bgra{0, 0, 0, 0})) << "an input of another size";
}

TEST(AmNode, SteadyFramesAllocateNothing)
{
    if (!test::kCountsAllocations)
        GTEST_SKIP() << "the sanitizer counts for itself";
    CEffectImage input(64, 48, 0, 32, nullptr); // one task: the scheduler's own memory is not ours
    for (const EffectInfo& info : amEffectInfos()) {
        Node node(findAmRow(info.guid)->id, 64, 48);
        node.setInputImage(&input, 0);
        node.evaluate(nullptr);
        const std::size_t before = test::allocationCount();
        node.evaluate(nullptr);
        EXPECT_EQ(test::allocationCount(), before) << info.name;
    }
}

TEST(AmNode, DescribesWhatItStores)
{
    for (const EffectInfo& info : amEffectInfos()) {
        Node node(findAmRow(info.guid)->id, 8, 1080); // shares of the height are described for this one
        for (const ParamInfo* param : node.described()) {
            const float stored = param->type == ParamType::integer ? float(node.getParamInt(param->name, -1))
                                                                   : node.getParamFloat(param->name, -1);
            EXPECT_EQ(stored, float(param->value[0])) << info.name << ' ' << param->name;
        }
    }
}

TEST(AmNode, ABandIsTheBlocksAtAnyHeight)
{
    for (u32 height = 1; height <= 4096; height += height < 1000 ? 1 : 101) {
        Node node("tilt-shift", 8, height);
        EXPECT_FLOAT_EQ(node.getParamFloat("TopPos", 0), 40.0f / float(height));
        EXPECT_FLOAT_EQ(node.getParamFloat("BottomPos", 0), 60.0f / float(height));
        CEffectImage input(8, height, 0, 32, nullptr);
        node.setInputImage(&input, 0);
        node.evaluate(nullptr);
        EXPECT_EQ(node.block().top, 40) << height;
        EXPECT_EQ(node.block().bottom, 60) << height;
    }
}

class AmTextures : public test::EngineWithoutGpu { };

TEST_F(AmTextures, AMissingTextureLeavesInputOneEmptyAndIsTransparentBlack)
{
    CEffectImage input(8, 8, 0, 32, nullptr);
    input.view().at(3, 3) = {9, 8, 7, 6};
    const auto outcome = [&](Am id) {
        Node node(id, 8, 8, "NoSuchTexture.png");
        EXPECT_EQ(node.getInputImage(1), nullptr);
        node.setInputImage(&input, 0);
        EXPECT_TRUE(node.evaluate(nullptr));
        return node.getOutputImage()->view().at(3, 3);
    };
    EXPECT_EQ(outcome("merge-image"), (Bgra{9, 8, 7, 6})) << "laid over by its alpha";
    EXPECT_EQ(outcome("ancient-canvas"), (Bgra{0, 0, 0, 6})) << "multiplied";
    EXPECT_EQ(outcome("screen"), (Bgra{9, 8, 7, 6})) << "screened";
}

TEST_F(AmTextures, AHostMayPutAPictureOfItsOwnInTheTexturesPlace)
{
    CEffectImage input(8, 8, 0, 32, nullptr);
    input.view().at(3, 3) = {9, 8, 7, 6};
    CEffectImage light(8, 8, 0, 32, nullptr);
    light.view().at(3, 3) = {1, 2, 250, 0};
    CEffectImage small(4, 4, 0, 32, nullptr);
    Node node("shine1", 8, 8, "NoSuchTexture.png");
    node.setInputImage(&input, 0);
    const auto result = [&] {
        EXPECT_TRUE(node.evaluate(nullptr));
        return node.getOutputImage()->view().at(3, 3);
    };
    node.setInputImage(&light, 1);
    EXPECT_EQ(result(), (Bgra{10, 10, 255, 6}));
    node.setInputImage(&small, 1);
    EXPECT_EQ(result(), (Bgra{9, 8, 7, 6})) << "of another size, it is not read";
}

TEST(AmTextureLog, AMissingTextureIsOneWarning)
{
    const std::filesystem::path file = std::filesystem::path(test::kOutputDirectory) / "missingTexture.log";
    std::filesystem::remove(file);
    ASSERT_TRUE(test::inChild([&] { // the log opens once per process
        test::useNoGraphics();
        bool ok = logging::open(file.string());
        Node("ancient-canvas", 8, 8, "NoSuchTexture.png");
        Node("merge-color", 8, 8);
        return ok;
    }));
    std::ifstream log(file);
    const std::string text{std::istreambuf_iterator<char>(log), {}};
    EXPECT_EQ(std::ranges::count(text, '\n'), 1) << text;
    EXPECT_NE(text.find(" WARN "), std::string::npos) << text;
    EXPECT_NE(text.find("[NoSuchTexture.png]"), std::string::npos) << text;
}

} // namespace
