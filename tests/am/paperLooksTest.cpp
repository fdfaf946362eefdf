// The looks that a formula per pixel does not tell: focus, canvas, pencil lines, the old print.
#include "am/AmFixture.h"

#include <array>

namespace {

using namespace KEXSDK;
using test::Am;
using test::AmBlock;
using test::AmPicture;
using test::Bgra;

AmPicture flat(int width, int height, Bgra colour)
{
    AmPicture picture(width, height);
    picture.fill(colour);
    return picture;
}

AmPicture blended(AmBlock& block, AmPicture picture, AmPicture texture)
{
    const AmImageDesc desc = picture.desc();
    const AmImageDesc second = texture.desc();
    EXPECT_EQ(AmApplyEffect(block.get(), &desc, &second), kAmOk);
    return picture;
}

AmPicture blended(Am id, const AmPicture& picture, const AmPicture& texture)
{
    AmBlock block(id);
    return blended(block, picture, texture);
}

constexpr Bgra kColour{10, 20, 230, 3};
constexpr Bgra kGrey{82, 82, 82, 3}; // (117 B + 601 G + 306 R + 512) >> 10

TEST(AmFocus, ShowsColourWhereTheMaskIsWhiteAndReadsItUpsideDown)
{
    const AmPicture picture = flat(9, 9, kColour);
    AmPicture mask = flat(6, 6, {0, 255, 255, 255}); // its blue counts
    mask.view().at(1, 0) = {255, 0, 0, 0};
    mask.view().at(2, 2).b = 128;
    mask.view().at(5, 5).b = 255; // beyond the window of 5 x 5
    AmPicture result = blended("focus-color", picture, mask);
    const auto mixed = [](int share) {
        const auto of = [&](int c) { return u8((c * share + 82 * (256 - share)) >> 8); };
        return Bgra{of(10), of(20), of(230), 3};
    };
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 9; ++x)
            EXPECT_EQ(result.at(x, y),
                x == 3 && y == 6       ? mixed(255)
                    : x == 4 && y == 4 ? mixed(128)
                                       : kGrey)
                << x << ' ' << y;
}

TEST(AmFocus, TheWindowMayReachBeyondThePicture)
{
    const AmPicture picture = flat(9, 9, kColour);
    const AmPicture mask = flat(6, 6, {255, 0, 0, 0});
    const auto coloured = [&](i32 x, i32 y) {
        AmBlock block("focus-color");
        block->posX = x;
        block->posY = y;
        const auto pixels = blended(block, picture, mask).pixels();
        return std::ranges::count_if(pixels, [](Bgra p) { return p != kGrey; });
    };
    EXPECT_EQ(coloured(50, 50), 25);
    EXPECT_EQ(coloured(0, 0), 9);
    EXPECT_EQ(coloured(100, 50), 10) << "the focus is column 9, the first one outside";
    EXPECT_EQ(coloured(200, 50), 0);
    EXPECT_EQ(coloured(-2'000'000'000, 50), 0);
    const auto all = blended("focus-color", picture, flat(1, 1, {255, 0, 0, 0})).pixels();
    EXPECT_EQ(std::ranges::count(all, kGrey), 81) << "a mask without a middle";
}

TEST(AmCanvas, FadesFromThePictureToTheTexture)
{
    // The farthest corner is 28 away: the picture is full within 5, and gone from 19 on.
    const AmPicture white = flat(41, 41, {255, 255, 255, 9});
    const AmPicture black = flat(41, 41, {0, 0, 0, 255});
    AmBlock block("canvas");
    AmPicture result = blended(block, white, black);
    const auto level = [&](int x) { return int(result.at(x, 20).g); };
    EXPECT_EQ(result.at(20, 20), (Bgra{239, 239, 239, 9}));
    EXPECT_EQ(level(25), 239);
    EXPECT_EQ(level(32), 119) << "half of the sine";
    EXPECT_EQ(level(38), 2) << "the sine's second entry";
    EXPECT_EQ(level(39), 0);
    EXPECT_EQ(result.at(0, 0), (Bgra{0, 0, 0, 9}));
    EXPECT_TRUE(blended(block, white, black).pixels() == result.pixels()) << "the second frame";

    const AmPicture paper = flat(41, 41, {200, 180, 160, 255});
    result = blended(block, flat(41, 41, {0, 0, 0, 1}), paper);
    EXPECT_EQ(result.at(0, 0), (Bgra{200, 180, 160, 1}));
    EXPECT_EQ(result.at(20, 20), (Bgra{200, 180, 160, 1})) << "black leaves the paper as it is";
}

TEST(AmCanvas, BuildsItsMaskWhenTheSizeChangesAndOnlyThen)
{
    const AmPicture white = flat(41, 41, {255, 255, 255, 9});
    const AmPicture black = flat(41, 41, {0, 0, 0, 255});
    AmBlock block("canvas");
    const auto middle = [&](int width) {
        AmPicture result =
            blended(block, flat(width, 41, {255, 255, 255, 9}), flat(width, 41, {0, 0, 0, 255}));
        return int(result.at(width / 2, 20).g);
    };
    EXPECT_EQ(middle(41), 239);
    EXPECT_EQ(block->dirty & 32, 0u);
    EXPECT_EQ(static_cast<const u8*>(block->scratchB)[1], 240) << "beside the mask's own bytes";
    std::memset(block->scratchB, 128, std::size_t(block->scratchBCapacity));
    EXPECT_EQ(middle(41), 127);
    EXPECT_EQ(middle(39), 239);
    std::memset(block->scratchB, 128, std::size_t(block->scratchBCapacity));
    block->dirty |= 32;
    EXPECT_EQ(middle(39), 239);

    AmBlock moved("merge-linear"); // its mark is consumed, but it has no mask
    blended(moved, white, black);
    moved->id = 2204;
    EXPECT_EQ(blended(moved, white, black).at(20, 20), (Bgra{239, 239, 239, 9}));
}

TEST(AmPencil, DrawsLinesOnTheGrainOfThePaper)
{
    AmPicture picture = flat(5, 4, {100, 100, 100, 6});
    picture.view().at(3, 1) = {50, 50, 50, 6};
    AmPicture paper = flat(5, 4, {128, 0, 0, 0});
    paper.view().at(1, 1).b = 0;
    AmPicture result = blended("classic", picture, paper);
    const auto greyOf = [](int v) { return Bgra{u8(v), u8(v), u8(v), 6}; };
    EXPECT_EQ(result.row(0), (std::vector<Bgra>(5, greyOf(255))));
    EXPECT_EQ(result.row(3), (std::vector<Bgra>(5, greyOf(255))));
    EXPECT_EQ(
        result.row(1), (std::vector<Bgra>{greyOf(255), greyOf(99), greyOf(255), greyOf(128), greyOf(255)}));
    const AmPicture black = flat(3, 3, {0, 0, 0, 6});
    EXPECT_EQ(blended("classic", black, flat(3, 3, {255, 0, 0, 0})).at(1, 1), greyOf(255));
}

TEST(AmPencil, TheSketchShowsOnlyThroughWhitePaper)
{
    AmPicture picture = flat(4, 3, {100, 100, 100, 6});
    picture.view().at(2, 1) = {10, 20, 30, 6};
    AmPicture paper = flat(4, 3, {255, 255, 255, 1});
    EXPECT_EQ(blended(2206, picture, paper).row(1), // 2^24 / 108 times the grey
        (std::vector<Bgra>{{100, 100, 100, 6}, {237, 237, 237, 6}, {47, 47, 47, 6}, {100, 100, 100, 6}}));
    EXPECT_EQ(blended(2206, picture, paper).row(0), (std::vector<Bgra>(4, {100, 100, 100, 6})));
    paper.fill({255, 255, 255, 0});
    EXPECT_EQ(blended(2206, picture, paper).at(2, 1), (Bgra{10, 20, 30, 6})) << "nothing there";
    paper.fill({0, 255, 110, 128});
    EXPECT_EQ(blended(2206, picture, paper).at(2, 1), (Bgra{5, 137, 70, 6}));
}

TEST(AmOldPhoto, HasTheBytesOfThePlainSums)
{
    constexpr std::array<int, 13> kWeights{51, 51, 50, 49, 47, 45, 43, 40, 37, 34, 31, 28, 25};
    constexpr int kWidth = 37;
    constexpr int kHeight = 29;
    AmPicture picture(kWidth, kHeight, 12);
    picture.fillWithNoise(6);
    AmPicture texture(kWidth, kHeight);
    texture.fillWithNoise(7);
    using Plane = std::array<std::array<int, kWidth>, kHeight>;
    const auto channel = [](Bgra p, int c) { return int(pixels::toWord(p) >> 8 * c & 255); };
    const auto blurred = [&](int c) {
        Plane along{};
        Plane both{};
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                int sum = 0;
                for (int i = -12; i <= 12; ++i)
                    sum += kWeights[std::size_t(std::abs(i))]
                        * channel(picture.at(std::clamp(x + i, 0, kWidth - 1), y), c);
                along[std::size_t(y)][std::size_t(x)] = sum >> 10;
            }
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                int sum = 0;
                for (int i = -12; i <= 12; ++i)
                    sum += kWeights[std::size_t(std::abs(i))]
                        * along[std::size_t(std::clamp(y + i, 0, kHeight - 1))][std::size_t(x)];
                both[std::size_t(y)][std::size_t(x)] = sum >> 10;
            }
        return both;
    };
    AmPicture result = blended("rq-old-photo", picture, texture);
    for (int c = 0; c < 3; ++c) {
        const Plane soft = blurred(c);
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const Bgra p = picture.at(x, y);
                const Bgra t = texture.at(x, y);
                const int luma = (29 * p.b + 150 * p.g + 76 * p.r + 255) >> 8;
                const int light = std::clamp(luma - 50, 0, 150) * 255 / 150;
                const int printed = (soft[std::size_t(y)][std::size_t(x)] + light) >> 1;
                const int expected = (printed * (255 - t.a) + channel(t, c) * t.a) >> 8;
                ASSERT_EQ(channel(result.at(x, y), c), expected) << x << ' ' << y << ' ' << c;
                ASSERT_EQ(result.at(x, y).a, 255);
            }
    }
    // All weights together are 1011 of 1024.
    EXPECT_EQ(blended("rq-old-photo", flat(3, 3, {255, 255, 255, 1}), flat(3, 3, {0, 0, 0, 0})).at(1, 1),
        (Bgra{250, 250, 250, 255}));
}

} // namespace
