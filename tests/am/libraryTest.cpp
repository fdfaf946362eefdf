// Blocks, result codes, scratch memory and dirty bits of the numeric effect library.
#include "am/AmFixture.h"
#include "effects/am/library/amScratch.h"

namespace {

using namespace KEXSDK;
using test::Am;
using test::AmBlock;
using test::AmPicture;
using test::Ams;
using test::apply;

TEST(AmBlockDefaults, EveryFamilyStartsFromTheCommonValues)
{
    for (const Am id : Ams{"gray-scale", "sharp", 2190}) {
        AmBlock block(id);
        EXPECT_EQ(block->size, 176u);
        EXPECT_EQ(block->id, id);
        EXPECT_EQ(block->percent, 50);
        EXPECT_EQ(block->radius, 50);
        EXPECT_EQ(block->posX, 50);
        EXPECT_EQ(block->posY, 50);
        EXPECT_EQ(block->width, 0);
        EXPECT_EQ(block->left, 0);
        EXPECT_EQ(block->top, 0);
        EXPECT_EQ(block->right, 100);
        EXPECT_EQ(block->bottom, 100);
        EXPECT_EQ(block->dirty, 0xFFFFFFFFu);
        EXPECT_EQ(block->usageMask, 0);
        EXPECT_EQ(block->frameRate, 0.0f);
        EXPECT_EQ(block->scratchC, nullptr);
        const bool filter = id < 98;
        EXPECT_EQ(block->pickX, filter ? 50.0f : 0.0f);
        EXPECT_EQ(block->work3, filter ? 100 : 0);
        EXPECT_EQ(block->work7, filter ? 100 : 0);
        EXPECT_EQ(block->work5, 0);
    }
}

TEST(AmBlockDefaults, SomeIdsStartDifferently)
{
    for (const Am id : Ams{"noise", "mosaic", "plash", "film-grain", "exposure", "binary", 1025, "sketch",
             "neon", "shake", "ripple", "raindrop"})
        EXPECT_EQ(AmBlock(id)->usageMask, 1) << id;
    EXPECT_EQ(AmBlock("sun-shine")->usageMask, 7);
    EXPECT_EQ(AmBlock("sharp")->usageMask, 0);
    EXPECT_EQ(AmBlock("tunnel")->usageMask, 6);
    EXPECT_EQ(AmBlock("whirl")->usageMask, 4);
    EXPECT_EQ(AmBlock("snow")->direction, 1);
    EXPECT_EQ(AmBlock("bubble")->direction, 0);
    EXPECT_EQ(AmBlock("bubble")->usageMask, 35);
    EXPECT_EQ(AmBlock("get-color")->radius, 30);
    EXPECT_EQ(AmBlock("tilt-shift")->top, 40);
    EXPECT_EQ(AmBlock("tilt-shift")->bottom, 60);
    EXPECT_EQ(AmBlock(2070)->variant, 0);
    EXPECT_EQ(AmBlock(2067)->variant, 3);
    EXPECT_EQ(AmBlock(2068)->variant, 2);
    for (const Am id : Ams{2078, "old-film", 2089, 2093, "merge-linear", 2180, 2184})
        EXPECT_EQ(AmBlock(id)->percent, 100) << id;
    for (const i32 id : {2079, 2094, 2179, 2185})
        EXPECT_EQ(AmBlock(id)->percent, 50) << id;
    EXPECT_EQ(AmBlock(2092)->percent, 60);
    EXPECT_EQ(AmBlock(2178)->percent, 40);

    const auto colour = [](Am id) {
        AmBlock block(id);
        return std::array<int, 4>{block->red, block->green, block->blue, block->alpha};
    };
    using Colour = std::array<int, 4>;
    EXPECT_EQ(colour("merge-color"), (Colour{0, 255, 255, 128}));
    EXPECT_EQ(colour(2064), (Colour{225, 55, 36, 0}));
    EXPECT_EQ(colour(2066), (Colour{40, 70, 235, 0}));
    EXPECT_EQ(colour("linear-burn"), (Colour{205, 155, 36, 0}));
}

TEST(AmCodes, BlocksExistOnlyForTheThreeFamilies)
{
    AmEffectParams* block = nullptr;
    for (const i32 id : {0, -1, 98, 1024, 1044, 2048, 2207})
        EXPECT_EQ(AmCreateParams(&block, id), -2) << id;
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(AmCreateParams(nullptr, 1), -1);
    EXPECT_EQ(AmReleaseParams(nullptr), -1);
}

TEST(AmCodes, BrokenBlocksAndPicturesAreRefusedUntouched)
{
    AmPicture picture{{1, 2, 3, 4}};
    const AmImageDesc desc = picture.desc();
    AmBlock block("negative");
    EXPECT_EQ(AmApplyEffect(nullptr, &desc, nullptr), -5);
    block->size = 172;
    EXPECT_EQ(AmApplyEffect(block.get(), &desc, nullptr), -5);
    EXPECT_EQ(AmReleaseParams(block.get()), -5);
    block->size = 176;
    EXPECT_EQ(AmApplyEffect(block.get(), nullptr, nullptr), -3);
    const auto refused = [&](auto spoil) {
        AmImageDesc bad = desc;
        spoil(bad);
        return AmApplyEffect(block.get(), &bad, nullptr) == -3;
    };
    EXPECT_TRUE(refused([](AmImageDesc& d) { d.size = 24; }));
    EXPECT_TRUE(refused([](AmImageDesc& d) { d.data = nullptr; }));
    EXPECT_TRUE(refused([](AmImageDesc& d) { d.dataSize = 0; }));
    EXPECT_TRUE(refused([](AmImageDesc& d) { d.width = 0; }));
    EXPECT_TRUE(refused([](AmImageDesc& d) { d.height = -1; }));
    EXPECT_TRUE(refused([](AmImageDesc& d) { d.stride = 0; }));
    EXPECT_TRUE(refused([](AmImageDesc& d) { d.stride = 3; }));
    EXPECT_TRUE(refused([](AmImageDesc& d) { d.bitsPerPixel = 24; }));
    EXPECT_EQ(block->width, 0);
    EXPECT_EQ(picture.at(0, 0), (pixels::Bgra{1, 2, 3, 4}));
    EXPECT_EQ(AmApplyEffect(block.get(), &desc, nullptr), 0);
}

TEST(AmCodes, IdsWithoutAnEffectLeaveThePicture)
{
    AmPicture picture{{1, 2, 3, 4}, {5, 6, 7, 8}};
    const auto before = picture.pixels();
    for (const i32 id : {70, 1043, 2062, 2071}) {
        AmBlock block(id);
        AmPicture second{{9, 9, 9, 9}, {9, 9, 9, 9}};
        const AmImageDesc desc = picture.desc();
        const AmImageDesc secondDesc = second.desc();
        EXPECT_EQ(AmApplyEffect(block.get(), &desc, &secondDesc), -1) << id;
        EXPECT_EQ(picture.pixels(), before);
    }
    AmBlock moved("noise");
    moved->id = 500;
    EXPECT_EQ(apply(moved, picture), -1);
    AmBlock textured("merge-image");
    EXPECT_EQ(apply(textured, picture), -3);
    EXPECT_EQ(picture.pixels(), before);
}

TEST(AmCodes, EffectsThatNeedACopyKeepItBeforeAnythingElse)
{
    AmPicture picture(3, 2, 8);
    picture.fillWithNoise(3);
    AmBlock block(1043);
    EXPECT_EQ(apply(block, picture), -1);
    ASSERT_GE(block->scratchBCapacity, 3 * 2 * 4);
    EXPECT_EQ(std::memcmp(block->scratchB, picture.view().row(0).data(), 12), 0);
    EXPECT_EQ(std::memcmp(static_cast<u8*>(block->scratchB) + 12, picture.view().row(1).data(), 12), 0);
}

class AmMemory : public testing::Test {
protected:
    void TearDown() override { am::setAllocationGate(nullptr); }
};

TEST_F(AmMemory, WithoutItBlocksAreNotMadeAndEffectsLeaveThePicture)
{
    AmPicture picture(40, 30);
    picture.fillWithNoise(1);
    const auto before = picture.pixels();
    for (const Am id : {"cyan-blue", "tcvga", "cartoon", "star", "snow", "bubble", "photo-with-skecth",
             "aegean", "shadow", "kaleidoscope", "sharp"}) {
        AmBlock block(id);
        am::setAllocationGate([](std::size_t) { return false; });
        EXPECT_EQ(apply(block, picture), -6) << id;
        EXPECT_EQ(picture.pixels(), before) << id;

        if (id < 98) {
            AmPicture elsewhere(40, 30);
            const AmImageDesc desc = elsewhere.desc();
            EXPECT_EQ(AmApplyEffectFrom(picture.view(), block.get(), &desc, nullptr), -6) << id;
            EXPECT_EQ(elsewhere.pixels(), before) << "the plain copy";
        }
        AmEffectParams* none = nullptr;
        EXPECT_EQ(AmCreateParams(&none, id), -1);
        am::setAllocationGate(nullptr);
        if (id < 98) {
            EXPECT_EQ(apply(block, picture), 0) << "it recovers";
            picture.fillWithNoise(1);
        }
    }
}

TEST_F(AmMemory, ChangedInPlaceManyLooksKeepTheSourceTwice)
{
    for (const Am id : {"photo-with-skecth", "sun-flower", "simple-elegent", "bw-noise", "vintage-gloaming",
             "purple-love", "wash", "rainbow2", "jigsaw-a", "jigsaw-f", "kaleidoscope"}) {
        AmPicture picture(5, 2, 12);
        picture.fillWithNoise(u32(id));
        const auto before = picture.pixels();
        AmBlock block(id);
        for (const int allowed : {0, 1}) {
            static int left;
            left = allowed;
            am::setAllocationGate([](std::size_t) { return left-- > 0; });
            EXPECT_EQ(apply(block, picture), -6) << id;
            EXPECT_EQ(picture.pixels(), before) << id;
        }
        am::setAllocationGate(nullptr);
        EXPECT_EQ(apply(block, picture), 0) << id;
        EXPECT_EQ(std::memcmp(block->scratchA, before.data(), 40), 0) << id;
        EXPECT_EQ(std::memcmp(block->scratchB, before.data(), 40), 0) << id;
    }
    for (const Am id : {"bw-yellow", "fresh-new", "vignette-radius"}) {
        AmPicture picture(5, 2);
        AmBlock block(id);
        EXPECT_EQ(apply(block, picture), 0) << id;
        EXPECT_EQ(block->scratchA, nullptr) << id;
        EXPECT_EQ(block->scratchB, nullptr) << id;
    }
}

TEST_F(AmMemory, SoftFocusNamesItsTemporaryPicture)
{
    AmPicture source(8, 4);
    source.fillWithNoise(2);
    AmPicture picture(8, 4);
    const AmImageDesc desc = picture.desc();
    AmBlock block("fuzzy-img");
    am::setAllocationGate([](std::size_t) { return false; });
    EXPECT_EQ(AmApplyEffectFrom(source.view(), block.get(), &desc, nullptr), -2);
    EXPECT_EQ(picture.pixels(), source.pixels());
}

TEST_F(AmMemory, SteadyFramesAllocateNothing)
{
    for (const Am id : Ams{"cyan-blue", "tcvga", "star", "snow", "bubble", "photo-with-skecth", "sun-flower",
             "bw-noise", "fuzzy-img", "aegean", "shadow", "kaleidoscope", 1025, "sharp", "shake", "ripple",
             "enlarge", "raindrop", "frames", "tilt-shift", "explosion"}) {
        AmBlock block(id);
        AmPicture picture(40, 30);
        EXPECT_EQ(apply(block, picture), 0);
        am::setAllocationGate([](std::size_t) { return false; });
        EXPECT_EQ(apply(block, picture), 0) << id;
        am::setAllocationGate(nullptr);
    }
}

TEST_F(AmMemory, ScratchBuffersOnlyGrow)
{
    AmBlock block("snow");
    AmPicture wide(500, 2);
    AmPicture narrow(100, 2);
    EXPECT_EQ(apply(block, wide), 0);
    EXPECT_EQ(block->scratchCCapacity, 16 * 250);
    void* const buffer = block->scratchC;
    EXPECT_EQ(apply(block, narrow), 0);
    EXPECT_EQ(block->scratchC, buffer);
    EXPECT_EQ(block->scratchCCapacity, 16 * 250);
}

TEST(AmDirtyBits, AnotherSizeIsRecordedAndMarked)
{
    AmBlock block("gray-scale");
    AmPicture picture(4, 3);
    block->dirty = 0;
    EXPECT_EQ(apply(block, picture), 0);
    EXPECT_EQ(block->width, 4);
    EXPECT_EQ(block->height, 3);
    EXPECT_EQ(block->dirty, 32u);
    block->dirty = 0;
    EXPECT_EQ(apply(block, picture), 0);
    EXPECT_EQ(block->dirty, 0u);
}

TEST(AmDirtyBits, TablesAreRebuiltOnlyWhenTheirBitIsSet)
{
    AmBlock block("tcvga");
    AmPicture white(8, 1);
    const auto quantised = [&] {
        white.fill({255, 255, 255, 1});
        EXPECT_EQ(apply(block, white), 0);
        return white.at(0, 0);
    };
    EXPECT_EQ(quantised(), (pixels::Bgra{255, 255, 255, 1}));
    EXPECT_EQ(block->dirty, ~1u);
    std::memset(block->scratchC, 1, std::size_t(block->scratchCCapacity)); // every cell is blue
    EXPECT_EQ(quantised(), (pixels::Bgra{255, 0, 0, 1}));
    block->dirty |= 1;
    EXPECT_EQ(quantised(), (pixels::Bgra{255, 255, 255, 1}));
}

TEST(AmDirtyBits, MapsAreMadeForASizeAndKeptUntilABitIsSet)
{
    struct Row {
        Am id;
        u32 kept; ///< bits that the effect leaves alone
        u32 renews;
    };
    for (const Row& row : {Row{"photo-with-skecth", ~1u, 1}, {"aegean", ~33u, 1}, {"aegean", ~33u, 32},
             {"shadow", ~1u, 1}, {"kaleidoscope", ~32u, 32}}) {
        AmBlock block(row.id);
        AmPicture source(40, 30);
        source.fillWithNoise(4);
        const auto made = [&](AmPicture picture) {
            EXPECT_EQ(apply(block, picture), 0) << row.id;
            return picture.pixels();
        };
        const auto fresh = made(source);
        EXPECT_EQ(block->dirty, row.kept) << row.id;
        std::memset(block->scratchC, 0, std::size_t(block->scratchCCapacity));
        EXPECT_NE(made(source), fresh) << row.id << ": the map was made again";
        block->dirty |= row.renews;
        EXPECT_EQ(made(source), fresh) << row.id;
        EXPECT_EQ(block->dirty, row.kept) << row.id;

        AmPicture upright(30, 40);
        upright.fillWithNoise(5);
        EXPECT_EQ(made(upright), test::applied(row.id, upright).pixels()) << row.id;
    }
}

TEST(AmDirtyBits, ABufferInheritedFromAnotherIdStaysHarmless)
{
    // A caller may change the id of a living block: whatever the buffer holds must not lead outside.
    AmPicture picture(40, 30);
    for (const Am next :
        {"star", "snow", "bubble", "tcvga", "cartoon", "cyan-blue", "photo-with-skecth", "aegean", "shadow",
            "kaleidoscope", "shake", "ripple", "tunnel", "raindrop", "frames", "tilt-shift"}) {
        AmBlock block("cartoon");
        EXPECT_EQ(apply(block, picture), 0);
        std::memset(block->scratchC, 0x7E, std::size_t(block->scratchCCapacity));
        block->dirty = 0;
        block->id = next;
        block->frameRate = 25;
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(apply(block, picture), 0) << next;
        EXPECT_TRUE(picture.surroundingsIntact());
    }
}

} // namespace
