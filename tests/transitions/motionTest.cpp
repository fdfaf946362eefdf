// Facts about the transitions that blend whole frames, draw random numbers, move or deform the pictures.
#include "core/Clock.h"
#include "core/Random.h"
#include "transitions/TransitionFixture.h"

#include <gmock/gmock.h>

#include <numeric>

namespace {

using pixels::Bgra;
using test::place;
using testing::Each;
using testing::ElementsAre;

class Motion : public test::TransitionFixture {
protected:
    void TearDown() override { core::pinTime(std::nullopt); }
};

TEST_F(Motion, DissolveKeepsTheOldAlphaWhileItMixes)
{
    open("dissolve", 3, 2);
    // Both weights round up to 128.
    EXPECT_THAT(show(0.5f).row(0), Each(Bgra{110, 120, 130, 40}));
    EXPECT_THAT(show(0.001f).row(0), Each(test::kFrom)); // weight 255 copies
}

TEST_F(Motion, FadeDipsToSixteenInEveryByte)
{
    open("fade", 2, 1);
    EXPECT_THAT(show(0.5f).row(0), Each(Bgra{16, 16, 16, 16}));
    EXPECT_THAT(show(0.25f).row(0), Each(Bgra{13, 18, 23, 28}));
    EXPECT_THAT(show(0.75f).row(0), Each(Bgra{113, 118, 123, 128}));
}

TEST_F(Motion, FlashBrightensThreefoldInTheMiddle)
{
    open("flash", 2, 1);
    EXPECT_THAT(show(0).row(0), Each(Bgra{20, 30, 40, 50}));
    EXPECT_THAT(show(1).row(0), Each(Bgra{220, 230, 240, 250}));
    // Weights 127 and 128; then every byte, the alpha of the old picture too, plus 10 and times 3.
    fromFrame().fill({0, 10, 20, 30});
    toFrame().fill({0, 10, 20, 255});
    EXPECT_THAT(show(0.5f).row(0), Each(Bgra{30, 57, 87, 120}));
}

TEST_F(Motion, RandomRowsFollowTheThreadsGenerator)
{
    // A new generator gives 41, 18467, 6334, 26500, 19169: 1, 564, 193, 809 and 585 thousandths.
    open("h-random-line", 2, 5);
    pixels::threadRandom().seed(1);
    show(0.5f);
    EXPECT_EQ(column(1), "..#.#"); // drawn from the bottom up
    EXPECT_EQ(pixels::threadRandom().next(), 15724);

    pixels::threadRandom().seed(1);
    show(0);
    EXPECT_EQ(pixels::threadRandom().next(), 41) << "the start draws nothing";

    open("v-random-line", 5, 2);
    pixels::threadRandom().seed(1);
    EXPECT_EQ(picture(0.5f)[0], "#.#..");
    pixels::threadRandom().seed(1);
    show(0);
    EXPECT_EQ(pixels::threadRandom().next(), 15724) << "here the start draws, too";

    // Even widths from 50 to 75: 50 + 0 and 50 + 14.
    open("wind", 100, 3);
    pixels::threadRandom().seed(1);
    picture(0.5f);
    EXPECT_EQ(row(2), std::string(50, '#') + std::string(50, '.'));
    EXPECT_EQ(row(1), row(2));
    EXPECT_EQ(row(0), std::string(64, '#') + std::string(36, '.'));
}

TEST_F(Motion, PixelsDissolveInTheOrderOfOneShuffledTable)
{
    // Seed 1 and eight pixels give the order 7, 5, 1, 0, 4, 6, 2, 3 in memory. A picture of another size in
    // between makes the table forget earlier tests.
    core::pinTime(1);
    open("dissolve-2", 3, 3);
    show(0.5f);
    open("dissolve-2", 4, 2);
    EXPECT_EQ(picture(0.5f), (std::vector<std::string>{".#.#", "##.."}));
    EXPECT_EQ(picture(0.47f), (std::vector<std::string>{".#.#", ".#.."}));

    // Later frames and other nodes of the size share it, whatever the clock says.
    core::pinTime(99);
    open("dissolve-2", 4, 2);
    EXPECT_EQ(picture(0.5f), (std::vector<std::string>{".#.#", "##.."}));
    open("dissolve-2", 127, 131);
    EXPECT_EQ(picture(1.7f, 1.7f), std::vector<std::string>(131, std::string(127, '#')));
}

TEST_F(Motion, PixelateSamplesBlockCentres)
{
    openPlaces("pixelate", 60, 30);
    auto out = show(0.1f); // blocks of 5 x 2
    EXPECT_EQ(out.pictureRow(3)[7], place(1, 7, 3));
    EXPECT_EQ(out.pictureRow(2)[9], place(1, 7, 3));
    EXPECT_EQ(out.pictureRow(29)[59], place(1, 57, 28)); // never the last row
    outFrame().fill({1, 2, 3, 77});
    out = show(0.5f); // both in square blocks of 25 pixels, weights 127 and 128
    EXPECT_EQ(out.pictureRow(0)[0].a, 77);
    EXPECT_EQ(out.pictureRow(0)[0].b, 12 * 127 / 255 + 12 * 128 / 255);
    EXPECT_EQ(out.pictureRow(0)[30].b, 37 * 127 / 255 + 37 * 128 / 255);
}

TEST_F(Motion, DropBouncesTwiceAndLandsWithItsBottomFirst)
{
    openPlaces("drop-bounce", 1, 16);
    const auto depth = [&](float time) {
        const auto out = show(time);
        int n = 0;
        while (n < 16 && out.pictureRow(n)[0].r == 2)
            ++n;
        return n;
    };
    for (const auto& [time, rows] :
        {std::pair{0.1f, 1}, {0.2f, 4}, {0.4f, 16}, {0.6f, 14}, {0.8f, 16}, {0.9f, 16}, {0.995f, 16}})
        EXPECT_EQ(depth(time), rows) << time;
    const auto out = show(0.2f);
    EXPECT_EQ(out.pictureRow(3)[0], place(2, 0, 15));
    EXPECT_EQ(out.pictureRow(4)[0], place(1, 0, 4));
}

TEST_F(Motion, BandsDropOneAfterTheOther)
{
    openPlaces("drop", 1, 70); // bands of 32, 32 and 6 rows
    auto out = show(0.25f);    // 35 rows of travel: the lowest is gone, the next has moved 3 rows
    EXPECT_EQ(out.pictureRow(31)[0], place(1, 0, 31));
    EXPECT_EQ(out.pictureRow(33)[0], place(2, 0, 33));
    EXPECT_EQ(out.pictureRow(35)[0], place(1, 0, 32));
    EXPECT_EQ(out.pictureRow(66)[0], place(1, 0, 63));
    EXPECT_EQ(out.pictureRow(67)[0], place(2, 0, 67));
    out = show(0.02f); // 3 rows of travel
    EXPECT_EQ(out.pictureRow(66)[0], place(2, 0, 66));
    EXPECT_EQ(out.pictureRow(67)[0], place(1, 0, 64));
}

TEST_F(Motion, ToppleSqueezesTheOldPictureUnderTheNewOne)
{
    openPlaces("topple", 1, 4);
    const auto out = show(0.5f);
    EXPECT_EQ(out.pictureRow(0)[0], place(2, 0, 2));
    EXPECT_EQ(out.pictureRow(1)[0], place(2, 0, 3));
    EXPECT_EQ(out.pictureRow(2)[0], place(1, 0, 1));
    EXPECT_EQ(out.pictureRow(3)[0], place(1, 0, 3));
}

TEST_F(Motion, LayersRiseAndPileUp)
{
    // Layers of 2 rows; they travel 20, 18, 16, ... rows, 110 together. After half of that three have landed,
    // at 54, and the fourth has come up by one row.
    open("deposit-up", 1, 20);
    show(0.5f);
    EXPECT_EQ(column(0), "cccccc.............c");
}

TEST_F(Motion, BlindSlatsGrowThinAndMaySkipTheTopRow)
{
    open("blind", 1, 9);
    show(0.5f); // slats of 4 rows, 2 of them kept; the next slat would start in the top row
    EXPECT_EQ(column(0), "?##..##..");
    open("blind", 1, 8);
    show(0.5f); // the second slat reaches beyond the top with a row of the new picture
    EXPECT_EQ(column(0), "##..##..");
    open("blind", 1, 10);
    show(0.5f); // slats of 5 rows
    EXPECT_EQ(column(0), "###..###..");
}

TEST_F(Motion, FoldsAreShaded)
{
    open("blind-1", 400, 1);
    const auto fold = show(0.5f).row(0); // the front is at 120
    EXPECT_EQ(fold[119], test::kTo);
    EXPECT_EQ(fold[120], (Bgra{189, 198, 207, 240}));
    EXPECT_EQ(fold[137], (Bgra{189, 198, 207, 240}));
    EXPECT_EQ(fold[138], (Bgra{0, 0, 0, 240}));
    EXPECT_EQ(fold[200], (Bgra{0, 0, 0, 240})); // a slat, and the last column of the new picture
    EXPECT_EQ(fold[208], (Bgra{0, 0, 0, 40}));
    EXPECT_EQ(fold[209], (Bgra{6, 12, 18, 40}));
    EXPECT_EQ(fold[279].a, 40);
    EXPECT_EQ(fold[280], test::kFrom);
}

TEST_F(Motion, RollLightsItsCurlFromBothEdges)
{
    open("roll", 200, 1);
    fromFrame().fill({100, 120, 200, 7});
    const auto out = show(0.5f).row(0);
    EXPECT_EQ(out[99], test::kTo);
    EXPECT_EQ(out[100], (Bgra{0, 20, 100, 7}));
    EXPECT_EQ(out[108], (Bgra{100, 120, 200, 7}));
    EXPECT_EQ(out[116], (Bgra{200, 220, 235, 7}));
    EXPECT_EQ(out[131], (Bgra{13, 33, 113, 7}));
    EXPECT_EQ(out[132], (Bgra{100, 120, 200, 7}));
}

TEST_F(Motion, TheDiagonalRollCurlsTheOldPictureTowardTheTopRight)
{
    openPlaces("roll-right-top", 200, 200);
    // Half of the diagonal: the fold runs through the other two corners.
    auto out = show(0.5f);
    EXPECT_EQ(out.at(60, 60), place(2, 60, 139));
    // Beyond the curl of 136 pixels and its shadow of 8 lies the old picture.
    EXPECT_EQ(out.at(190, 190), place(1, 190, 9));
    // In the brighter half of the curl stands the paper from across the fold.
    const Bgra back = out.at(150, 150);
    EXPECT_EQ(back.b, out.at(150, 149).b - 1);
    EXPECT_LE(back.b, 60);
    // The shadow darkens the paper ahead of the curl and fades.
    EXPECT_LT(out.at(168, 169).b, 168);
    EXPECT_GT(out.at(168, 169).b, 84);

    // No frame jumps: the fold passes over the picture in steps that follow its speed.
    int before = 0;
    for (int step = 1; step <= 100; ++step) {
        out = show(float(step) / 100);
        int turned = 0;
        for (int y = 0; y < 200; ++y)
            turned += int(std::ranges::count_if(out.row(y), [](Bgra p) { return p.a == 102; }));
        EXPECT_GE(turned, before) << step;
        EXPECT_LT(turned - before, 200 * 200 / 14) << step;
        before = turned;
    }
    EXPECT_EQ(before, 200 * 200);
}

TEST_F(Motion, TilesFlyOutwardAndKeepTheirPixels)
{
    // The tile at column 6 and row 2 of the grid: its corner (60, 20) lies 15 right of the centre and 15
    // above.
    openPlaces("move-rectangles-1", 90, 70);
    auto out = show(0.5f);
    EXPECT_EQ(out.pictureRow(0)[71], place(1, 60, 22)); // moved by 11 and 22 up, its top rows cut off
    EXPECT_EQ(out.pictureRow(2)[75], place(1, 64, 24));
    EXPECT_EQ(out.pictureRow(2)[76], place(2, 76, 2)); // half as large
    EXPECT_EQ(out.pictureRow(3)[71], place(2, 71, 3));

    // The corner (40, 40) of 100 x 80 lies on the level axis: it moves by 4.2 columns to the left.
    openPlaces("move-rectangles-2", 100, 80);
    out = show(0.5f);
    EXPECT_EQ(out.pictureRow(40)[36], place(1, 40, 40));
    EXPECT_EQ(out.pictureRow(44)[40], place(1, 44, 44));
}

TEST_F(Motion, TurnFoldsThePictureToItsCentreLine)
{
    openPlaces("turn", 40, 40);
    EXPECT_THAT(show(0.5f).row(20), Each(Bgra{0, 0, 0, 0}));
    // A quarter of the turn, 45 degrees: the top edge leans back, the bottom edge beyond the picture's width.
    const auto out = show(0.411f);
    EXPECT_EQ(out.row(0)[0], (Bgra{0, 0, 0, 0}));
    int rows = 0;
    int widest = 0;
    int narrowest = 40;
    for (int y = 0; y < 40; ++y) {
        const int width = int(std::ranges::count_if(out.row(y), [](Bgra p) { return p.a == 101; }));
        rows += width > 0;
        widest = std::max(widest, width);
        narrowest = width > 0 ? std::min(narrowest, width) : narrowest;
    }
    EXPECT_EQ(rows, 27);
    EXPECT_EQ(widest, 40);
    EXPECT_EQ(narrowest, 34);
}

TEST_F(Motion, ZoomAndTwirlLeaveAlphaToEarlierFrames)
{
    openPlaces("zoom", 80, 40);
    outFrame().fill({1, 2, 3, 77});
    auto out = show(0.5f); // elevenfold; the new picture at half its size in the middle
    EXPECT_EQ(out.pictureRow(0)[0], (Bgra{36, 18, 1, 77}));
    EXPECT_EQ(out.pictureRow(20)[41], (Bgra{42, 20, 2, 77}));
    EXPECT_EQ(out.pictureRow(11)[21], (Bgra{2, 2, 2, 77}));
    EXPECT_EQ(out.pictureRow(10)[21], (Bgra{38, 19, 1, 77}));

    openPlaces("twirl", 80, 40);
    outFrame().fill({1, 2, 3, 77});
    EXPECT_THAT(show(0.5f).row(9), Each(Bgra{0, 0, 0, 77}));
    out = show(0.25f); // upside down, a little more than half as large
    EXPECT_EQ(out.pictureRow(0)[0], (Bgra{0, 0, 0, 77}));
    EXPECT_NEAR(out.pictureRow(20)[30].b, 59, 1);
    EXPECT_EQ(out.pictureRow(20)[30].a, 101);
    EXPECT_NEAR(show(0.75f).pictureRow(14)[40].g, 31, 1);
}

} // namespace
