// Facts about the effects that move pixels.
#include "effects/FrameEffect.h"
#include "effects/cpu/WaterSurface.h"

#include <cmath>

namespace {

using pixels::Bgra;
using test::place;

constexpr const char* kFishEye = "A0DFCB73-9C3D-4d18-813E-8CC29D76D406";
constexpr const char* kDistort = "8E3062B2-FA4C-44be-8DF1-2187B4FBEB4A";
constexpr const char* kRainDrop = "D0A14E0A-298C-4adb-B82D-FDADA4E48A01";
constexpr const char* kWaterRipple = "87E372F5-44F1-45aa-8C6E-BC3762CA7798";
constexpr const char* kWaterSuffer = "AF1C5813-A7C2-4d6a-8AD7-95C3D70A8F78";
constexpr const char* kTvWall = "562330DC-1334-4b02-A5B9-B140FC68B0E2";
constexpr const char* kRibbon = "83A3EBFF-0A46-465b-B201-1E8A7DD5DA1B";

constexpr Bgra kBlack{0, 0, 0, 255};

class Distortion : public test::FrameEffect {
protected:
    bool inputChangedOnBorder(pixels::ConstView out)
    {
        const auto [w, h] = out.extent();
        for (int x = 0; x < w; ++x) {
            if (out.at(x, 0) != place(x, 0) || out.at(x, h - 1) != place(x, h - 1))
                return true;
        }
        for (int y = 0; y < h; ++y) {
            if (out.at(0, y) != place(0, y) || out.at(w - 1, y) != place(w - 1, y))
                return true;
        }
        return false;
    }
};

TEST_F(Distortion, FishEyeMagnifiesTowardItsCentre)
{
    host::Filter& lens = openPlaces(kFishEye, 100, 100);
    auto out = show();
    EXPECT_EQ(out.at(50, 50), place(50, 50));
    EXPECT_EQ(out.at(90, 50), place(66, 50)) << "distance 40 of 100: 40 * 0.4 from the centre";
    EXPECT_EQ(out.at(50, 30), place(50, 46));
    EXPECT_EQ(out.at(0, 0), place(15, 15)) << "the distance 70.7 counts as 70";
    lens.set("Radius", 0.2f);
    out = show();
    EXPECT_EQ(out.at(60, 50), place(55, 50));
    EXPECT_EQ(out.at(71, 50), place(71, 50)) << "outside";
    lens.set("Radius", 0.0f);
    EXPECT_TRUE(showsItsInput());
}

TEST_F(Distortion, FishEyeClampsItsSources)
{
    host::Filter& lens = openPlaces(kFishEye, 100, 100);
    lens.set("Radius", -1.0f); // turns the picture around the centre
    EXPECT_EQ(show().at(90, 50), place(34, 50));
    lens.set("X", 0);
    EXPECT_EQ(show().at(90, 50), place(0, 50));
    lens.set("X", 2'000'000'000);
    lens.set("Y", -2'000'000'000);
    lens.set("Radius", 1e30f);
    show();
    EXPECT_TRUE(guardsIntact());
}

TEST_F(Distortion, DistortWarpsTheMiddleAndHoldsTheCorner)
{
    openPlaces(kDistort, 64, 48);
    const auto out = show();
    EXPECT_EQ(out.at(0, 0), place(0, 0));
    EXPECT_EQ(out.at(5, 3), place(8, 5));
    EXPECT_EQ(out.at(32, 24), place(47, 35));
    EXPECT_EQ(out.at(36, 29), place(51, 39));
    EXPECT_EQ(out.at(10, 40), place(17, 45));
    EXPECT_EQ(out.at(63, 47), place(62, 46));
}

TEST_F(Distortion, DistortCoversFullBlocksOnly)
{
    host::Filter& warp = openPlaces(kDistort, 19, 11);
    warp.set("Amplitude", 200);
    const auto out = show();
    EXPECT_NE(out.at(8, 4), place(8, 4));
    EXPECT_EQ(out.at(16, 4), place(16, 4));
    EXPECT_EQ(out.at(8, 8), place(8, 8));
    warp.set("Amplitude", 0);
    EXPECT_TRUE(showsItsInput());
}

TEST_F(Distortion, TvWallRepeatsThePictureBehindBlackLines)
{
    host::Filter& wall = openPlaces(kTvWall, 13, 10);
    auto out = show(); // tiles of 4 x 3 that take every third pixel
    EXPECT_EQ(out.at(1, 1), place(3, 3));
    EXPECT_EQ(out.at(7, 2), place(9, 6));
    EXPECT_EQ(out.at(11, 8), place(9, 6));
    EXPECT_EQ(out.at(4, 1), kBlack);
    EXPECT_EQ(out.at(5, 3), kBlack);
    EXPECT_EQ(out.at(12, 1), place(12, 1)) << "beyond the full tiles";
    EXPECT_EQ(out.at(1, 9), place(1, 9));
    wall.set("SpliteSize", 10);
    EXPECT_EQ(show().at(5, 5), kBlack) << "tiles of one pixel are all line";
    for (const int none : {0, -1, 11, 2'000'000'000}) {
        wall.set("SpliteSize", none);
        EXPECT_TRUE(showsItsInput()) << none;
    }
    wall.set("SpliteSize", 2);
    const test::MemoryShortage shortage;
    EXPECT_TRUE(showsItsInput()) << "the frame before stays";
}

TEST_F(Distortion, RibbonShiftsEachColumnAndShowsBlackBeyondThePicture)
{
    host::Filter& ribbon = openPlaces(kRibbon, 40, 40);
    ribbon.set("Swing", 0.05f);    // 5 pixels
    ribbon.set("Frequency", 0.4f); // one wave across
    const auto out = show();
    EXPECT_EQ(out.at(0, 7), place(0, 7));
    EXPECT_EQ(out.at(10, 0), place(10, 5));
    EXPECT_EQ(out.at(10, 34), place(10, 39));
    EXPECT_EQ(out.at(10, 35), kBlack);
    EXPECT_EQ(out.at(30, 4), kBlack);
    EXPECT_EQ(out.at(30, 5), place(30, 0));
    EXPECT_EQ(out.at(21, 0), place(21, 0)) << "0.78 rows above the picture truncate to row 0";
    EXPECT_EQ(out.at(21, 1), place(21, 0));
    for (const float none : {0.0f, 0.009f, std::nanf("")}) {
        ribbon.set("Swing", none);
        EXPECT_TRUE(showsItsInput()) << none;
    }
    ribbon.set("Swing", 1e30f);
    EXPECT_EQ(show().at(10, 20), kBlack);
}

TEST(WaterSurface, RefractsByItsSlopesAndSpreads)
{
    test::GuardedFrame below(5, 5);
    test::GuardedFrame seen(5, 5);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x)
            below.view().at(x, y) = place(x, y);
    }
    pixels::WaterSurface water({5, 5}, 3);
    ASSERT_TRUE(water.ready());
    water.press({2, 2}, 1, [](i64) { return 64; });
    water.renderAndStep(below.view(), seen.view());
    EXPECT_EQ(seen.view().at(1, 2), place(3, 0)) << "8 pixels before (1, 2), in memory order";
    EXPECT_EQ(seen.view().at(2, 2), place(2, 2)) << "its ray leaves the picture";
    EXPECT_EQ(seen.view().at(2, 3), place(2, 3));
    // The height has run to the eight neighbours: 64 / 4, less an eighth.
    water.renderAndStep(below.view(), seen.view());
    EXPECT_EQ(seen.view().at(2, 2), place(0, 0));
    EXPECT_EQ(seen.view().at(3, 1), place(4, 1));
    EXPECT_EQ(seen.view().at(3, 3), place(4, 4));
    EXPECT_EQ(seen.view().at(1, 1), place(1, 1));
    EXPECT_TRUE(seen.guardsIntact());
}

TEST_F(Distortion, RainFallsOnEveryNinthFrame)
{
    pixels::restartRain();
    openPlaces(kRainDrop, 200, 160);
    for (int frame = 1; frame <= 8; ++frame)
        EXPECT_TRUE(showsItsInput()) << "frame " << frame;
    EXPECT_FALSE(showsItsInput()) << "frame 9";
    for (int frame = 10; frame <= 40; ++frame)
        EXPECT_FALSE(inputChangedOnBorder(show())) << "frame " << frame;
}

TEST_F(Distortion, NodesShareTheRain)
{
    pixels::restartRain();
    openPlaces(kRainDrop, 200, 160);
    host::Filter other(kRainDrop, 200, 160);
    host::Image black(200, 160);
    other.setInput(black);
    for (int frame = 0; frame < 4; ++frame) {
        other.run();
        EXPECT_TRUE(showsItsInput());
    }
    EXPECT_FALSE(showsItsInput()) << "the ninth frame of all";
}

TEST_F(Distortion, DropsWithoutRoomDoNotFall)
{
    // The first drop is drawn at (-17, -10); a radius of 30 finds no new place, one of 2 does.
    for (const bool fits : {false, true}) {
        host::Filter& rain = openPlaces(kRainDrop, 20, 20);
        rain.set("Desity", 100);
        rain.set("Radius", fits ? 8 : 120);
        EXPECT_EQ(showsItsInput(), !fits);
    }
}

TEST_F(Distortion, WildDropsStayInTheirBuffers)
{
    for (const char* guid : {kRainDrop, kWaterRipple}) {
        for (const int wild : {2'147'483'647, -2'147'483'647 - 1}) {
            host::Filter& water = openPlaces(guid, 33, 17);
            water.set("Desity", 100);
            water.set("Radius", wild);
            water.set("Height", wild);
            for (int frame = 0; frame < 30; ++frame)
                show();
            EXPECT_TRUE(guardsIntact());
        }
    }
}

TEST_F(Distortion, RipplesStartWhereTheFirstDropFalls)
{
    openPlaces(kWaterRipple, 200, 160).set("Radius", 10);
    const auto out = show(); // at (23, 70): the sides of a cone are a slope
    for (int y = 0; y < 160; ++y) {
        for (int x = 0; x < 200; ++x) {
            if (std::hypot(x - 23, y - 70) > 11) {
                ASSERT_EQ(out.at(x, y), place(x, y)) << x << ", " << y;
            }
        }
    }
    EXPECT_NE(out.at(23 - 5, 70), place(23 - 5, 70));
    EXPECT_NE(out.at(23, 70 + 5), place(23, 70 + 5));
}

TEST_F(Distortion, TheSwimmerStartsOnItsPath)
{
    openPlaces(kWaterSuffer, 200, 160);
    const auto out = show(); // dents at (168, 94), and half way from (80, 80)
    int changed = 0;
    for (int y = 0; y < 160; ++y) {
        for (int x = 0; x < 200; ++x) {
            if (out.at(x, y) == place(x, y))
                continue;
            ++changed;
            const bool near = std::hypot(x - 168, y - 94) <= 5 || std::hypot(x - 124, y - 87) <= 4;
            EXPECT_TRUE(near) << x << ", " << y;
        }
    }
    EXPECT_GT(changed, 30);
    for (int frame = 0; frame < 30; ++frame)
        EXPECT_FALSE(inputChangedOnBorder(show()));
}

TEST_F(Distortion, WithoutMemoryTheWaterIsStill)
{
    const test::MemoryShortage shortage;
    for (const char* guid : {kRainDrop, kWaterRipple, kWaterSuffer}) {
        openPlaces(guid, 200, 160).set("Desity", 100);
        EXPECT_TRUE(showsItsInput()) << guid;
    }
}

} // namespace
