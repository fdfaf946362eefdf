// Facts about the transitions that take every pixel from where it lies.
#include "transitions/TransitionFixture.h"

#include <gmock/gmock.h>

namespace {

using pixels::Bgra;
using test::place;
using Rows = std::vector<std::string>;

class Geometric : public test::TransitionFixture { };

TEST_F(Geometric, WhisksEnterInBandsOfTenFromAlternateSides)
{
    open("row-whisk", 4, 25);
    const Rows rows = picture(0.5f);
    for (int v = 0; v < 25; ++v)
        EXPECT_EQ(rows[std::size_t(v)], v / 10 == 1 ? "..##" : "##..") << v;

    open("col-whisk", 25, 4);
    EXPECT_EQ(picture(0.5f)[0], "##########..........#####");
    EXPECT_EQ(row(1), row(0));
    EXPECT_EQ(row(2), "..........##########.....");
    EXPECT_EQ(row(3), row(2));

    open("cross-whisk", 24, 22);
    picture(0.35f);
    const std::string left = row(9);
    const std::string right = row(12);
    ASSERT_EQ(left, "###.....................");
    EXPECT_EQ(right, ".....................###");
    EXPECT_EQ(row(0), "##########..........####");
    EXPECT_EQ(row(21), "###.......##########....");
}

TEST_F(Geometric, SplitsOpenFromTheMiddleAndMergesCloseOnIt)
{
    open("row-split", 1, 6);
    show(0.5f);
    EXPECT_EQ(column(0), "..ccc.");
    show(0.2f); // not a whole row yet, so not even the middle one
    EXPECT_EQ(column(0), "......");
    open("col-split", 7, 1);
    EXPECT_EQ(picture(0.5f)[0], ".ccccc."); // half of 3.5, rounded
    open("row-merge", 1, 6);
    show(0.5f);
    EXPECT_EQ(column(0), "##..##");
    open("col-merge", 8, 1);
    EXPECT_EQ(picture(0.5f)[0], "ccc...cc");
    open("cross-split", 6, 6);
    EXPECT_EQ(picture(0.5f), (Rows{"..##..", "..##..", "######", "..##..", "..##..", "..##.."}));
    open("cross-merge", 6, 4);
    EXPECT_EQ(picture(0.5f), (Rows{"ccc.cc", "ccc.cc", "......", "ccc.cc"}));
    open("rect-zoom-out", 8, 8);
    EXPECT_EQ(picture(0.5f)[3], "...ccc..");
    EXPECT_EQ(row(2), "........");
    open("rect-zoom-in", 8, 8);
    EXPECT_EQ(show(0.5f).pictureRow(2)[4], (Bgra{209, 219, 229, 40}));
    EXPECT_EQ(row(3), "???...??");
}

TEST_F(Geometric, CellsAreAnEvenTenthOfTheHeight)
{
    // A tenth of 15 rows is 1, which is odd, so cells have 2 rows; of 40 rows they have 4.
    open("cross-shutter-1", 5, 15);
    EXPECT_EQ(picture(0.99f), Rows(15, "....."));
    open("cross-shutter-1", 9, 40);
    picture(0.5f);
    EXPECT_EQ(row(5), "#########");
    EXPECT_EQ(row(6), "##..##..#");
    open("cross-shutter-2", 9, 40);
    picture(0.5f);
    EXPECT_EQ(row(5), "##..##..#");
    EXPECT_EQ(row(6), ".........");
    open("grid-zoom-in", 9, 40);
    picture(0.3f);
    EXPECT_EQ(row(35), ".........");
    EXPECT_EQ(row(36), ".ccc.ccc.");
    EXPECT_EQ(row(38), ".ccc.ccc.");
    EXPECT_EQ(row(39), ".........");
    open("grid-zoom-out", 9, 40);
    picture(0.5f);
    EXPECT_EQ(row(38), "c...c...c");
    EXPECT_EQ(row(39), "ccccccccc");
    // Pictures of fewer than ten rows have no cells.
    for (const char* name : {"cross-shutter-1", "cross-shutter-2", "grid-zoom-in", "grid-zoom-out"}) {
        open(name, 3, 9);
        EXPECT_EQ(picture(0.9f), Rows(9, "...")) << name;
    }
}

TEST_F(Geometric, ShuttersOpenInPeriodsOfThirty)
{
    open("vertical-shutter", 32, 1);
    EXPECT_EQ(picture(0.1f)[0], "ccc...........................cc");
    open("horizontal-shutter", 1, 32);
    show(0.04f);
    EXPECT_EQ(column(0), "c.............................c.");
}

TEST_F(Geometric, WipesHaveTheirRamps)
{
    open("linear-wipe-down", 1, 600);
    auto out = show(0.5f); // the front is at row 500
    EXPECT_EQ(row(99), "c");
    EXPECT_EQ(out.pictureRow(100)[0], (Bgra{209, 219, 229, 40})); // weight 255 of a shift blend
    EXPECT_EQ(out.pictureRow(300)[0], (Bgra{109, 119, 129, 40})); // 127: 210 * 127 >> 8, 10 * 128 >> 8
    EXPECT_EQ(row(500), ".");

    open("linear-wipe-right", 600, 1);
    out = show(0.5f);
    EXPECT_EQ(out.pictureRow(0)[100], (Bgra{210, 220, 230, 40})); // exact, as a division blend is there
    EXPECT_EQ(out.pictureRow(0)[300], (Bgra{109, 119, 129, 40}));
    EXPECT_EQ(row(0).substr(498), "?" + std::string(101, '.'));

    // 700 + 100 + 565 pixels of travel; at half of it the front stands at 682.
    open("linear-wipe", 700, 100);
    out = show(0.5f);
    EXPECT_EQ(row(0).substr(0, 118), std::string(117, '#') + "?");
    EXPECT_EQ(out.pictureRow(0)[117], (Bgra{209, 219, 229, 239})); // 565 * 181 / 400 = 255
    EXPECT_EQ(out.pictureRow(0)[690], (Bgra{9, 19, 29, 39}));      // beyond the front, a shade darker
    EXPECT_EQ(row(0).back(), '?');

    open("erase", 300, 1);
    out = show(0.5f); // 200 pixels in
    EXPECT_EQ(row(0).substr(0, 101), std::string(100, '#') + "?");
    EXPECT_EQ(out.pictureRow(0)[150], (Bgra{109, 119, 129, 139}));
    EXPECT_EQ(row(0).substr(200), std::string(100, '.'));
}

TEST_F(Geometric, SoftSplitsShowTheirBandOverTheOldThenOverTheNewPicture)
{
    open("row-split-2", 2, 10);
    outFrame().fill({1, 1, 1, 77});
    auto out = show(0.5f);
    EXPECT_EQ(out.pictureRow(5)[1], (Bgra{10, 20, 30, 77})); // byte 3 is not written
    EXPECT_EQ(out.pictureRow(0)[1], (Bgra{210, 220, 230, 77}));
    EXPECT_EQ(out.pictureRow(2)[1].b, 130); // 153: 210 * 153 / 255 + 10 * 102 / 255
    out = show(0.1f);
    EXPECT_EQ(out.pictureRow(0)[0].b, 10);
    EXPECT_EQ(show(0.9f).pictureRow(0)[0].b, 210);

    open("col-split-2", 5, 1);
    EXPECT_EQ(show(0.02f).pictureRow(0)[2], test::kFrom);
    // Half way the band is cut to the picture.
    out = show(0.5f);
    EXPECT_EQ(out.pictureRow(0)[0].b, 209);
    EXPECT_EQ(out.pictureRow(0)[2].b, 9);
    EXPECT_EQ(out.pictureRow(0)[4].b, 168);
}

TEST_F(Geometric, RowsSlideAndPushAndStepInWholePixels)
{
    openPlaces("push", 4, 1);
    auto out = show(0.5f);
    EXPECT_THAT(
        out.row(0), testing::ElementsAre(place(2, 2, 0), place(2, 3, 0), place(1, 0, 0), place(1, 1, 0)));

    open("bar", 96, 64);
    picture(0.5f);
    EXPECT_EQ(row(31), std::string(80, '#') + std::string(16, '.'));
    EXPECT_EQ(row(32), std::string(48, '#') + std::string(48, '.'));

    // At half time the front spans the picture: the top row is done, the bottom one has hardly begun.
    openPlaces("row-cos-slide", 10, 16);
    out = show(0.5f);
    EXPECT_EQ(out.pictureRow(0)[9], place(2, 9, 0));
    EXPECT_EQ(out.pictureRow(8)[0], place(2, 5, 8)); // cos(90 degrees): half the width
    EXPECT_EQ(out.pictureRow(8)[5], place(1, 5, 8));
    EXPECT_EQ(out.pictureRow(7)[5], place(2, 0, 7)); // from the right: five pixels
    EXPECT_EQ(out.pictureRow(7)[4], place(1, 4, 7));
    open("row-cos-whisk", 10, 16);
    picture(0.5f);
    EXPECT_EQ(row(8), "ccccc.....");
    EXPECT_EQ(row(7), ".....ccccc");
}

TEST_F(Geometric, PinwheelBladesOpenFromTheAxes)
{
    open("pinwheel", 9, 9);
    EXPECT_EQ(picture(0.4f),
        (Rows{"...cc....", "...cc....", "....c....", "....c..cc", "cccc.cccc", "cc..c....", "....c....",
            "....cc...", "....cc..."}));
}

} // namespace
