// Facts about the library's effects that move pixels, scatter noise, damage film, light and select.
#include "am/AmFixture.h"
#include "effects/am/library/amTables.h"

#include <array>
#include <set>
#include <string>

namespace {

using test::Am;
using test::AmPicture;
using test::applied;
using test::Bgra;
using test::numbered;
using test::percent;
using Row = std::vector<Bgra>;

AmPicture grey(int width, int height, u8 value)
{
    AmPicture picture(width, height);
    picture.fill({value, value, value, 9});
    return picture;
}

TEST(AmGeometry, FlipsAndMirrorsMoveWholePixels)
{
    for (const auto& [w, h] : {std::pair{7, 5}, {8, 4}, {1, 1}, {1, 3}, {3, 1}, {70, 33}}) {
        AmPicture source = numbered(w, h);
        const auto moved = [&](Am id, auto from) {
            AmPicture out = applied(id, source);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    const auto [sx, sy] = from(x, y);
                    ASSERT_EQ(out.at(x, y), source.at(sx, sy)) << id << " at " << x << ", " << y;
                }
        };
        moved("flip-lr", [&, w = w](int x, int y) { return std::pair{w - 1 - x, y}; });
        moved("flip-tb", [&, h = h](int x, int y) { return std::pair{x, h - 1 - y}; });
        moved("flip-all", [&, w = w, h = h](int x, int y) { return std::pair{w - 1 - x, h - 1 - y}; });
        moved("mirror-lr", [&, w = w](int x, int y) { return std::pair{std::min(x, w - 1 - x), y}; });
        moved("mirror-tb", [&, h = h](int x, int y) { return std::pair{x, std::min(y, h - 1 - y)}; });
    }
}

TEST(AmGeometry, MosaicCellsTakeTheirMiddleAndRestsTheirFirstPixel)
{
    AmPicture source = numbered(100, 100);
    AmPicture out = applied("mosaic", source, percent(100)); // cells of 13, rests of 9
    EXPECT_EQ(out.at(0, 0), source.at(6, 6));
    EXPECT_EQ(out.at(12, 12), source.at(6, 6));
    EXPECT_EQ(out.at(13, 12), source.at(19, 6));
    EXPECT_EQ(out.at(90, 77), source.at(84, 71));
    EXPECT_EQ(out.at(91, 0), source.at(91, 0));
    EXPECT_EQ(out.at(99, 25), source.at(91, 13));
    EXPECT_EQ(out.at(0, 91), source.at(0, 91));
    EXPECT_EQ(out.at(25, 99), source.at(13, 91));
    EXPECT_EQ(out.at(99, 99), source.at(91, 91));

    // A rest of one column or row keeps its pixels.
    source = numbered(9, 9);
    out = applied("mosaic", source, percent(25)); // cells of 4
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(out.at(8, i), source.at(8, i));
        EXPECT_EQ(out.at(i, 8), source.at(i, 8));
    }
    EXPECT_EQ(out.at(7, 7), source.at(6, 6));
    EXPECT_EQ(applied("mosaic", source, percent(0)).pixels(), source.pixels()) << "cells of one pixel";
}

TEST(AmNoise, SpecklesGrowFromNoneToAQuarterOfThePicture)
{
    AmPicture source(400, 100);
    source.fill({10, 60, 110, 5});
    for (const int nothing : {-1, 0, 12})
        EXPECT_EQ(applied("noise", source, percent(nothing)).pixels(), source.pixels());
    for (const auto& [amount, least, most] : {std::tuple{50, 0.02, 0.12}, {100, 0.15, 0.35}}) {
        int speckles = 0;
        for (const Bgra p : applied("noise", source, percent(amount)).pixels()) {
            if (p == Bgra{10, 60, 110, 5})
                continue;
            ++speckles;
            EXPECT_TRUE(p.b >= 128 && p.b == p.g && p.g == p.r && p.a == 5);
        }
        EXPECT_GT(speckles, least * 40000);
        EXPECT_LT(speckles, most * 40000);
    }
}

TEST(AmNoise, SpecklesDrawTwoNumbersEvenWhenThereAreNone)
{
    applied("noise", grey(4, 4, 0), percent(0));
    pixels::RandomGenerator expected(1);
    expected.next(), expected.next();
    EXPECT_EQ(pixels::threadRandom().next(), expected.next());
}

TEST(AmNoise, ScatterTakesPixelsFromNearby)
{
    AmPicture source = numbered(60, 40);
    AmPicture out =
        applied("plash", source, percent(30)); // up to 3 pixels at once, further along earlier moves
    int moved = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 60; ++x)
            moved += out.at(x, y) != source.at(x, y);
    EXPECT_GT(moved, 60 * 40 / 2);

    // With a distance of 0 only the last column and row move, by one.
    out = applied("plash", source, percent(0));
    EXPECT_EQ(out.at(10, 10), source.at(10, 10));
    EXPECT_EQ(out.at(59, 10), source.at(58, 10));
    EXPECT_EQ(out.at(10, 39), source.at(10, 38));
}

TEST(AmNoise, GrainIsTheSameForAllChannelsAndRunsAlongFourSums)
{
    const AmPicture source{{100, 100, 100, 1}, {0, 128, 255, 2}, {10, 20, 30, 3}, {200, 100, 50, 4},
        {100, 100, 100, 5}, {90, 91, 92, 6}};
    const Row expected{{69, 69, 69, 1}, {0, 96, 223, 2}, {0, 0, 0, 3}, {169, 69, 19, 4}, {127, 127, 127, 5},
        {76, 77, 78, 6}};
    EXPECT_EQ(applied("film-grain", source, percent(100)).row(0), expected);
}

TEST(AmFilm, SpecksAndScratchesLieOnTheRows)
{
    // A picture of 11 x 11 has only one place for damage. Pictures of one row are never damaged.
    const auto seventies = [](std::initializer_list<int> greys) {
        AmPicture row(11, 1);
        std::ranges::transform(greys, row.view().row(0).begin(), [](int v) {
            return Bgra{u8(v), u8(v), u8(v), 9};
        });
        return applied("70s", row).row(0);
    };
    constexpr u32 kOneSpeck = 1284;
    AmPicture out = applied("70s", grey(11, 11, 0xFF), percent(50), kOneSpeck);
    EXPECT_EQ(out.row(0), seventies({255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255}));
    EXPECT_EQ(out.row(3), seventies({0xFF, 0xFA, 0xE5, 0xBF, 0xA3, 0xAA, 0xCC, 0xEF, 0xFD, 0xFF, 255}));
    EXPECT_EQ(out.row(8), seventies({0xFF, 0xFE, 0xF7, 0xEE, 0xEA, 0xEF, 0xF9, 0xFE, 0xFF, 0xFF, 255}));
    EXPECT_EQ(out.row(10), seventies({255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255}));

    constexpr u32 kOneWideScratch = 420;
    out = applied("70s", grey(11, 11, 0x5F), percent(50), kOneWideScratch);
    for (const int y : {0, 5, 10})
        EXPECT_EQ(out.row(y), seventies({113, 97, 95, 95, 95, 95, 95, 95, 95, 95, 95}));
}

TEST(AmFilm, EveryFrameOfDamagedFilmDiffers)
{
    for (const Am id : {"old-movie", "1920", "70s", "siena", "x-pro"}) {
        test::AmBlock block(id);
        std::set<std::string> frames;
        pixels::threadRandom().seed(5);
        for (int i = 0; i < 10; ++i) {
            AmPicture picture = grey(64, 48, 180);
            EXPECT_EQ(test::apply(block, picture), 0);
            std::string bytes;
            for (const Bgra p : picture.pixels())
                bytes += {char(p.b), char(p.r)};
            frames.insert(bytes);
        }
        EXPECT_GT(frames.size(), 7u) << id;
    }
}

TEST(AmFilm, UnevenGreysFollowTheNoiseTable)
{
    const test::AmBlock first("1920"); // the first block of a process builds the table
    const int noise = KEXSDK::am::amRandomBytes()[0];
    const int uneven = (noise >> 3) + 192;
    EXPECT_EQ(applied("1920", grey(1, 1, 200)).at(0, 0), (pixels::grey({0, 0, 0, 9}, u8(200 * uneven >> 8))));
    EXPECT_EQ(
        applied("gray-retro", grey(1, 1, 200)).at(0, 0), (pixels::grey({0, 0, 0, 9}, u8(200 * uneven >> 8))));
    // Green and blue of 192 through their curves, red between nothing and its curve's 184.
    for (const Bgra p : applied("siena", grey(64, 8, 192)).pixels()) {
        EXPECT_EQ(p.b, 143);
        EXPECT_EQ(p.g, 162);
        EXPECT_LT(p.r, 184);
    }
}

TEST(AmFilm, OldMovieAnd1839StayWithinTheirTones)
{
    for (const Bgra p : applied("old-movie", grey(64, 8, 128)).pixels()) {
        EXPECT_TRUE(p.b == p.g && p.b >= 145 - 16 && p.b <= 145 + 15) << int(p.b);
        EXPECT_TRUE(p.r >= 185 - 16 && p.r <= 185 + 15) << int(p.r);
    }
    // The luma curve's 141 times 224 / 256 .. 287 / 256, then three curves that keep the order of the tones.
    for (const Bgra p : applied("1839", grey(64, 8, 128)).pixels())
        EXPECT_TRUE(p.b >= 99 - 5 && p.b <= 142 && p.b < p.g && p.g < p.r && p.r <= 175) << int(p.b);
}

TEST(AmFilm, ThreadsDoNotShowInWalks)
{
    // A picture large enough for the walk to start in two places; in place it never does.
    AmPicture source(400, 300);
    source.fillWithNoise(2);
    AmPicture flat = grey(400, 300, 77); // walks that may never meet
    for (const Am id : {"old-movie", "1839", "1920", "siena"}) {
        for (AmPicture* picture : {&source, &flat}) {
            test::AmBlock block(id);
            AmPicture out(400, 300);
            const KEXSDK::AmImageDesc desc = out.desc();
            pixels::threadRandom().seed(1);
            EXPECT_EQ(KEXSDK::AmApplyEffectFrom(picture->view(), block.get(), &desc, nullptr), 0);
            EXPECT_EQ(out.pixels(), applied(id, *picture).pixels()) << id;
        }
    }
}

TEST(AmLight, EmbossIsMiddleGreyOnFlatGroundAndAtTheRowsEnd)
{
    EXPECT_EQ(applied("emboss", grey(9, 2, 200)).pixels(), grey(9, 2, 128).pixels());
    AmPicture step(8, 1);
    for (int x = 0; x < 8; ++x)
        step.view().at(x, 0) = pixels::grey({0, 0, 0, 1}, x < 4 ? 40 : 140);
    const auto greys = [](std::initializer_list<int> values) {
        Row row;
        for (const int v : values)
            row.push_back(pixels::grey({0, 0, 0, 1}, u8(v)));
        return row;
    };
    EXPECT_EQ(applied("emboss", step, percent(0)).row(0), greys({128, 128, 128, 28, 128, 128, 128, 128}));
    EXPECT_EQ(applied("emboss", step, percent(20)).row(0), greys({128, 28, 28, 28, 128, 128, 128, 128}));
    EXPECT_EQ(applied("emboss", step, percent(100)).row(0), greys({128, 128, 128, 128, 128, 128, 128, 128}));
}

TEST(AmLight, SunshineIsBrightestAtItsCentreAndEndsAtItsRadius)
{
    AmPicture out = applied("sun-shine", grey(40, 20, 50), percent(100));
    // Radius 5, amplitude 256 - 64, falling from 25 x 192 >> 5 to nothing.
    EXPECT_EQ(out.at(20, 10), (Bgra{200, 200, 200, 9}));
    EXPECT_EQ(out.at(23, 10), (Bgra{146, 146, 146, 9}));
    EXPECT_EQ(out.at(15, 10), (Bgra{50, 50, 50, 9}));
    EXPECT_EQ(out.at(20, 14), out.at(24, 10));
    EXPECT_EQ(out.at(0, 0), (Bgra{50, 50, 50, 9}));
    const auto corner = [](KEXSDK::AmEffectParams& b) { b.posX = -5, b.posY = 500, b.percent = 100; };
    out = applied("sun-shine", grey(40, 20, 50), corner);
    EXPECT_EQ(out.at(0, 19), (Bgra{194, 194, 194, 9})) << "one row beside the centre";
}

TEST(AmSelection, GetColorKeepsTheMainHueOfTheWindow)
{
    constexpr Bgra kGreen{20, 220, 40, 1};
    constexpr Bgra kBlueish{220, 60, 30, 2};
    AmPicture picture(20, 20);
    picture.fill(kBlueish);
    for (int y = 8; y < 14; ++y)
        for (int x = 8; x < 14; ++x)
            picture.view().at(x, y) = kGreen;
    picture.view().at(0, 0) = {90, 90, 100, 3}; // too grey to have a hue
    const auto wide = [](KEXSDK::AmEffectParams& b) { b.radius = 100; };
    AmPicture out = applied("get-color", picture, wide);
    EXPECT_EQ(out.at(9, 9), kGreen);
    EXPECT_EQ(out.at(3, 3), (Bgra{69, 69, 69, 2}));
    EXPECT_EQ(out.at(0, 0), (Bgra{90, 90, 100, 3}));

    const auto elsewhere = [](KEXSDK::AmEffectParams& b) { b.radius = 100, b.pickX = b.pickY = 10; };
    out = applied("get-color", picture, elsewhere);
    EXPECT_EQ(out.at(9, 9), (Bgra{143, 143, 143, 1}));
    EXPECT_EQ(out.at(3, 3), kBlueish);

    // Reds lie on both ends of the circle of hues; a window without any pixel keeps nothing.
    constexpr Bgra kRed{40, 20, 220, 1};
    constexpr Bgra kOrangeRed{20, 40, 220, 1};
    AmPicture reds{kRed, kOrangeRed, kRed, kOrangeRed};
    const auto nothing = applied("get-color", reds, wide).row(0);
    EXPECT_TRUE(std::ranges::all_of(nothing, [](Bgra p) { return p.b == p.g && p.g == p.r; }));
    AmPicture wideReds(20, 20);
    wideReds.fill(kRed);
    wideReds.view().at(0, 0) = kOrangeRed;
    EXPECT_EQ(applied("get-color", wideReds, wide).pixels(), wideReds.pixels());
    EXPECT_EQ(applied("get-color", grey(20, 20, 90), wide).pixels(), grey(20, 20, 90).pixels());
}

} // namespace
