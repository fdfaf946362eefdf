// Literal pixels through the effects that blend a picture with a texture, and what those keep between frames.
#include "am/AmFixture.h"
#include "effects/am/library/amScratch.h"

#include <cmath>

namespace {

using namespace KEXSDK;
using test::Am;
using test::AmBlock;
using test::AmPicture;
using test::Ams;
using test::Bgra;
using Row = std::vector<Bgra>;

constexpr Bgra kDark{10, 20, 30, 40};
constexpr Bgra kLight{200, 150, 100, 7};

i32 apply(AmBlock& block, AmPicture& picture, AmPicture texture)
{
    const AmImageDesc desc = picture.desc();
    const AmImageDesc second = texture.desc();
    const i32 result = AmApplyEffect(block.get(), &desc, &second);
    EXPECT_TRUE(picture.surroundingsIntact());
    return result;
}

// The picture's first row after a run of the block.
Row blended(AmBlock& block, AmPicture picture, const AmPicture& texture)
{
    EXPECT_EQ(apply(block, picture, texture), kAmOk) << block->id;
    return picture.row(0);
}

Row blended(Am id, const AmPicture& picture, const AmPicture& texture)
{
    AmBlock block(id);
    return blended(block, picture, texture);
}

TEST(AmBlends, EveryModeMakesItsColoursAndKeepsAlpha)
{
    struct Expected {
        Am id;
        Bgra dark;
        Bgra light;
    };
    constexpr Expected kRows[] = {
        {"merge-image", {28, 59, 108, 40}, {129, 1, 255, 7}},
        {"ancient-canvas", {3, 11, 30, 40}, {100, 0, 100, 7}},
        {"water-drop3", {3, 11, 30, 40}, {100, 0, 100, 7}},
        {"old-tv", {5, 11, 20, 40}, {75, 0, 150, 7}},
        {2064, {11, 37, 223, 40}, {104, 0, 236, 7}},
        {"stencil-poster", {18, 120, 72, 40}, {108, 0, 130, 7}},
        {2066, {56, 44, 63, 40}, {125, 0, 124, 7}},
        {2067, {0, 0, 0, 40}, {128, 0, 255, 7}},
        {2068, {0, 0, 250, 40}, {128, 0, 255, 7}},
        {2069, {0, 130, 0, 40}, {128, 0, 255, 7}},
        {2070, {60, 0, 0, 40}, {128, 0, 255, 7}},
        {"color-explosion", {5, 21, 59, 40}, {200, 45, 200, 7}},
        {2078, {5, 21, 59, 40}, {200, 45, 200, 7}},
        {"old-film", {5, 25, 246, 40}, {200, 0, 255, 7}},
        {2090, {31, 117, 249, 40}, {221, 120, 255, 7}},
        {2096, {70, 150, 255, 40}, {255, 150, 255, 7}},
        {2104, {70, 150, 255, 40}, {255, 150, 255, 7}},
        {"merge-light", {13, 40, 255, 40}, {255, 150, 255, 7}},
        {"dark", {10, 20, 30, 40}, {128, 0, 100, 7}},
        {2113, {10, 20, 30, 40}, {128, 0, 100, 7}},
        {2116, {68, 140, 250, 40}, {227, 150, 255, 7}},
        {2166, {68, 140, 250, 40}, {227, 150, 255, 7}},
        {"soft-light", {4, 20, 84, 40}, {200, 88, 159, 7}},
        {2174, {4, 20, 84, 40}, {200, 88, 159, 7}},
        {"merge-linear", {0, 0, 25, 40}, {73, 0, 100, 7}},
        {2178, {0, 0, 28, 40}, {149, 48, 100, 7}},
        {2179, {0, 0, 27, 40}, {136, 22, 100, 7}},
        {"burnt-paper", {0, 0, 19, 40}, {29, 0, 194, 7}},
        {2187, {0, 0, 241, 40}, {88, 0, 248, 7}},
        {"linear-burn", {0, 38, 205, 40}, {80, 0, 224, 7}},
        {2189, {0, 0, 59, 40}, {103, 0, 124, 7}},
        {"linear-light", {0, 25, 255, 40}, {201, 0, 255, 7}},
        {"charcoal", {82, 152, 255, 40}, {255, 141, 255, 7}},
        {"color-fense", {72, 145, 251, 40}, {255, 211, 255, 7}},
        {"radio-explike-fx", {5, 21, 59, 40}, {200, 45, 200, 7}},
    };
    const AmPicture picture{kDark, kLight};
    const AmPicture texture{{60, 130, 250, 90}, {128, 0, 255, 255}};
    for (const Expected& row : kRows)
        EXPECT_EQ(blended(row.id, picture, texture), (Row{row.dark, row.light})) << row.id;
}

TEST(AmBlends, ModesThatAreTablesByDefinitionHaveTheirVeryBytes)
{
    const auto overlay = [](int a, int b) {
        return a < 128 ? (a * b + 127) >> 7 : 255 - (((255 - a) * (255 - b) + 127) >> 7);
    };
    const auto hardLight = [&](int a, int b) { return overlay(b, a); };
    const auto softLight = [](int a, int b) {
        return b < 128 ? (32768 * a + (b - 128) * a * (255 - a)) >> 15
                       : (128 * a + (b - 128) * int(16 * std::sqrt(double(a)) - a)) >> 7;
    };
    const auto dodge = [](int a, int b) { return b < 255 ? std::min(255 * a / (255 - b), 255) : 255; };
    const auto brighten = [](int a, int b) {
        return 255 - (((255 - b) * (255 - std::min(a * 256 / 182, 255))) >> 8);
    };
    AmPicture picture(256, 256);
    AmPicture texture(256, 256);
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            picture.view().at(b, a) = {u8(a), u8(a), u8(a), u8(b)};
            texture.view().at(b, a) = {u8(b), u8(b), u8(b), u8(a)};
        }
    }
    const auto agrees = [&](Am id, auto entry) {
        AmPicture result = picture;
        AmBlock block(id);
        EXPECT_EQ(apply(block, result, texture), kAmOk);
        EXPECT_EQ(block->dirty & kAmDirtyTable, id == Am("color-fense") ? 1u : 0u) << "the table's mark";
        for (int a = 0; a < 256; ++a)
            for (int b = 0; b < 256; ++b)
                if (const u8 v = u8(entry(a, b)); result.at(b, a) != Bgra{v, v, v, u8(b)})
                    return testing::AssertionFailure() << id << " at " << a << ", " << b;
        return testing::AssertionSuccess();
    };
    EXPECT_TRUE(agrees(2075, overlay));
    EXPECT_TRUE(agrees("radio-explike-fx", overlay));
    EXPECT_TRUE(agrees("old-film", hardLight));
    EXPECT_TRUE(agrees("soft-light", softLight));
    EXPECT_TRUE(agrees("merge-light", dodge));
    EXPECT_TRUE(agrees("color-fense", brighten));
}

TEST(AmBlends, SomeTexturesChangeNothing)
{
    AmPicture picture(16, 16);
    picture.fillWithNoise(1);
    const auto unchanged = [&](Am id, Bgra colour, i32 percentage) {
        AmPicture texture(16, 16);
        texture.fill(colour);
        AmPicture result = picture;
        AmBlock block(id);
        block->percent = percentage;
        EXPECT_EQ(apply(block, result, texture), kAmOk);
        return result.pixels() == picture.pixels();
    };
    EXPECT_TRUE(unchanged("merge-image", {1, 2, 3, 0}, 50)) << "transparent";
    EXPECT_TRUE(unchanged("ancient-canvas", {255, 255, 255, 0}, 50)) << "white, multiplied";
    EXPECT_TRUE(unchanged("screen", {0, 0, 0, 0}, 50)) << "black, screened";
    EXPECT_TRUE(unchanged("merge-linear", {1, 2, 3, 4}, 0)) << "faded to white";
    EXPECT_TRUE(unchanged("merge-linear", {1, 2, 3, 4}, -9)) << "faded to white";
    EXPECT_FALSE(unchanged("merge-linear", {1, 2, 3, 4}, 1));
}

TEST(AmBlends, TheColourWashNeedsNoTexture)
{
    AmPicture picture{kDark, kLight};
    EXPECT_EQ(test::applied("merge-color", picture, [](AmEffectParams& b) { b.alpha = 0; }).row(0),
        (Row{kDark, kLight}));
    const auto flat = [](AmEffectParams& b) { b.alpha = 255, b.red = 200, b.green = 100, b.blue = 0; };
    EXPECT_EQ(test::applied("merge-color", picture, flat).row(0), (Row{{0, 99, 199, 40}, {0, 100, 199, 7}}));
}

TEST(AmBlends, ColourTunesBendTheirCurvesAndThenBlend)
{
    struct Expected {
        Am id;
        Bgra at64;
        Bgra at192;
        Bgra curve64; ///< without a texture of the same size
    };
    constexpr Expected kRows[] = {
        {"sun-set", {45, 44, 101, 5}, {142, 83, 228, 5}, {83, 63, 103, 5}},
        {"vivid", {20, 44, 143, 5}, {208, 212, 242, 5}, {28, 44, 97, 5}},
        {"garden", {48, 59, 140, 5}, {212, 164, 240, 5}, {66, 59, 95, 5}},
        {"dan-gui", {39, 108, 208, 5}, {216, 196, 255, 5}, {85, 107, 107, 5}},
        {"september", {38, 63, 201, 5}, {204, 166, 255, 5}, {83, 63, 103, 5}},
    };
    const AmPicture picture{{64, 64, 64, 5}, {192, 192, 192, 5}};
    const AmPicture texture{{60, 130, 250, 90}, {128, 0, 255, 255}};
    const AmPicture other{{60, 130, 250, 90}};
    for (const Expected& row : kRows) {
        EXPECT_EQ(blended(row.id, picture, texture), (Row{row.at64, row.at192})) << row.id;
        EXPECT_EQ(blended(row.id, picture, other).front(), row.curve64) << row.id;
    }
    const AmPicture white{{255, 255, 255, 5}, {255, 255, 255, 5}};
    EXPECT_EQ(blended("lumbra-lomo", white, {{64, 64, 64, 0}, {192, 192, 192, 0}}),
        (Row{{53, 18, 41, 5}, {249, 227, 237, 5}}));
}

TEST(AmBlends, ATextureThatDoesNotFitIsRefused)
{
    AmPicture picture(8, 4);
    picture.fillWithNoise(2);
    const auto before = picture.pixels();
    AmPicture texture(8, 4);
    const AmImageDesc desc = picture.desc();
    const auto result = [&](Am id, auto spoil) {
        AmBlock block(id);
        AmImageDesc second = texture.desc();
        spoil(second);
        return AmApplyEffect(block.get(), &desc, &second);
    };
    for (const Am id : Ams{"merge-image", "old-tv", "stencil-poster", "old-film", "merge-linear",
             "lumbra-lomo", "color-fense", "radio-explike-fx", "rq-old-photo", "canvas", "classic", 2206}) {
        EXPECT_EQ(result(id, [](AmImageDesc& d) { d.width = 7; }), -3) << id;
        EXPECT_EQ(result(id, [](AmImageDesc& d) { d.height = 5; }), -3) << id;
    }
    for (const Am id : {"ancient-canvas", "sun-set", "focus-color"}) {
        EXPECT_EQ(result(id, [](AmImageDesc& d) { d.data = nullptr; }), -3) << id;
        EXPECT_EQ(result(id, [](AmImageDesc& d) { d.stride = 28; }), -3) << id;
        EXPECT_EQ(result(id, [](AmImageDesc& d) { d.width = 0; }), -3) << id;
        EXPECT_EQ(result(id, [](AmImageDesc& d) { d.height = -4; }), -3) << id;
    }
    EXPECT_EQ(picture.pixels(), before);
}

TEST(AmBlendState, TheHardLightsFadeFollowsThePercentage)
{
    const AmPicture picture{kLight};
    const AmPicture texture{{60, 130, 250, 90}};
    AmBlock block("old-film");
    const Row full = blended(block, picture, texture);
    EXPECT_EQ(block->dirty & 3, 2u);
    block->percent = 60;
    const Row weaker = blended(block, picture, texture);
    EXPECT_NE(weaker, full);
    EXPECT_EQ(weaker, blended(2090, picture, texture)) << "which starts with 60";
    block->dirty &= ~2u;
    block->percent = 100;
    EXPECT_EQ(blended(block, picture, texture), weaker) << "without the mark";
}

TEST(AmBlendState, TheLinearBurnKeepsItsFirstPercentageForASize)
{
    const AmPicture picture{kLight, kLight};
    const AmPicture texture{{60, 130, 250, 90}, {60, 130, 250, 90}};
    AmBlock block("merge-linear");
    const Row full = blended(block, picture, texture);
    EXPECT_EQ(block->dirty & 3, 0u);
    block->percent = 0;
    EXPECT_EQ(blended(block, picture, texture), full);
    EXPECT_EQ(blended(block, {kLight}, {{60, 130, 250, 90}}), (Row{kLight})) << "another size";
    for (const u32 bit : {1u, 2u}) {
        block->percent = block->percent == 0 ? 100 : 0;
        block->dirty |= bit;
        EXPECT_EQ(blended(block, {kLight}, {{60, 130, 250, 90}}).front(),
            block->percent == 0 ? kLight : full.front());
        EXPECT_EQ(block->dirty & 3, 0u);
    }
}

TEST(AmBlendState, ColourScreensKeepTheirFirstColour)
{
    const AmPicture picture{kDark};
    const AmPicture texture{{60, 130, 250, 90}};
    for (const Am id : {"stencil-poster", "linear-burn"}) {
        AmBlock block(id);
        const Row first = blended(block, picture, texture);
        block->red = block->green = block->blue = 255;
        EXPECT_EQ(blended(block, picture, texture), first);
        block->dirty |= 1;
        EXPECT_EQ(blended(block, picture, texture), (Row{{60, 130, 250, 40}})) << "screened with white";
        EXPECT_EQ(block->dirty & 1, 0u);
    }
}

constexpr Am kWithCopy[] = {"sun-set", "vivid", "garden", "dan-gui", "september", "color-fense",
    "focus-color", "radio-explike-fx", "rq-old-photo", "classic", 2206};

TEST(AmBlendState, InPlaceTheSourceStaysInBothCopies)
{
    for (const Am id : kWithCopy) {
        AmPicture picture(33, 17, 8);
        picture.fillWithNoise(4);
        const auto before = picture.pixels();
        AmPicture texture(33, 17);
        texture.fillWithNoise(5);
        AmBlock block(id);
        EXPECT_EQ(apply(block, picture, texture), kAmOk);
        EXPECT_FALSE(picture.pixels() == before) << id;
        for (const void* copy : {block->scratchA, block->scratchB}) {
            ASSERT_TRUE(copy) << id;
            EXPECT_EQ(std::memcmp(copy, before.data(), before.size() * sizeof(Bgra)), 0) << id;
        }
    }
}

TEST(AmBlendState, WithoutMemoryThePictureStays)
{
    AmPicture picture(33, 17);
    picture.fillWithNoise(4);
    const auto before = picture.pixels();
    AmPicture texture(33, 17);
    std::vector<Am> ids{"stencil-poster", "old-film", "merge-linear", "linear-burn", "canvas"};
    ids.insert(ids.end(), std::begin(kWithCopy), std::end(kWithCopy));
    for (const Am id : ids) {
        AmBlock block(id);
        am::setAllocationGate([](std::size_t) { return false; });
        EXPECT_EQ(apply(block, picture, texture), kAmNoMemory) << id;
        am::setAllocationGate(nullptr);
        EXPECT_TRUE(picture.pixels() == before) << id;
    }
}

} // namespace
