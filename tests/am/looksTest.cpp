// Literal pixels through the looks with curves, selections, sketches and soft light.
#include "am/AmFixture.h"

namespace {

using test::Am;
using test::AmPicture;
using test::applied;
using test::Bgra;
using Row = std::vector<Bgra>;

AmPicture greys(std::initializer_list<int> values)
{
    AmPicture picture(int(values.size()), 1);
    std::ranges::transform(values, picture.view().row(0).begin(), [](int v) {
        return Bgra{u8(v), u8(v), u8(v), 9};
    });
    return picture;
}

// A picture of three equal rows.
AmPicture thrice(AmPicture row)
{
    AmPicture picture(row.view().width(), 3);
    for (int y = 0; y < 3; ++y)
        std::ranges::copy(row.view().row(0), picture.view().row(y).begin());
    return picture;
}

std::vector<int> reds(const std::vector<Bgra>& pixels)
{
    std::vector<int> values;
    for (const Bgra p : pixels)
        values.push_back(p.r);
    return values;
}

TEST(AmLooks, CurvesGoThroughTheirPoints)
{
    struct Look {
        Am id;
        Row pixels; ///< of greys 0, 64, 128, 192 and 255
    };
    const Look kLooks[] = {
        {"sun-flower",
            {{69, 36, 43, 9}, {69, 67, 132, 9}, {92, 137, 210, 9}, {114, 180, 243, 9}, {122, 192, 254, 9}}},
        {"romantic",
            {{62, 1, 104, 9}, {62, 69, 151, 9}, {134, 172, 208, 9}, {192, 227, 236, 9}, {217, 254, 254, 9}}},
        {"holiday",
            {{97, 37, 57, 9}, {126, 97, 69, 9}, {154, 170, 188, 9}, {169, 209, 242, 9}, {173, 222, 254, 9}}},
        {"purple-lomo",
            {{104, 20, 35, 9}, {149, 55, 90, 9}, {192, 175, 178, 9}, {219, 220, 216, 9}, {232, 235, 235, 9}}},
        {"blue-tears",
            {{34, 5, 0, 9}, {128, 88, 68, 9}, {195, 171, 155, 9}, {234, 224, 217, 9}, {252, 253, 253, 9}}},
        {"purple-love",
            {{0, 0, 0, 9}, {81, 0, 39, 9}, {176, 134, 140, 9}, {232, 220, 222, 9}, {255, 255, 255, 9}}},
    };
    for (const Look& look : kLooks)
        EXPECT_EQ(applied(look.id, greys({0, 64, 128, 192, 255})).row(0), look.pixels) << look.id;
}

TEST(AmLooks, SelectionsTreatEachColourInItsOwnWay)
{
    // Dark, light, red, green, blue, yellow, pale and grey.
    const AmPicture colours{{10, 20, 30, 40}, {200, 150, 100, 7}, {30, 60, 220, 1}, {90, 200, 30, 2},
        {230, 60, 40, 3}, {20, 220, 240, 4}, {210, 190, 200, 5}, {128, 128, 128, 6}};
    struct Look {
        Am id;
        Row pixels;
    };
    const Look kLooks[] = {
        {"freshness",
            {{135, 39, 37, 40}, {234, 217, 177, 7}, {152, 111, 243, 1}, {180, 237, 60, 2}, {238, 98, 60, 3},
                {161, 248, 252, 4}, {240, 240, 243, 5}, {191, 199, 196, 6}}},
        {"beautify-img",
            {{29, 38, 67, 40}, {240, 227, 222, 7}, {162, 186, 247, 1}, {218, 240, 213, 2}, {239, 143, 173, 3},
                {241, 253, 255, 4}, {252, 250, 252, 5}, {212, 213, 221, 6}}},
        {"vintage-gloaming",
            {{76, 8, 68, 40}, {189, 163, 137, 7}, {98, 50, 249, 1}, {120, 208, 45, 2}, {206, 70, 60, 3},
                {61, 215, 253, 4}, {196, 202, 219, 5}, {145, 142, 166, 6}}},
        {"aibao",
            {{23, 39, 53, 40}, {255, 222, 151, 7}, {62, 109, 255, 1}, {138, 255, 61, 2}, {255, 108, 82, 3},
                {32, 255, 255, 4}, {255, 245, 252, 5}, {204, 200, 198, 6}}},
    };
    for (const Look& look : kLooks)
        EXPECT_EQ(applied(look.id, colours).row(0), look.pixels) << look.id;

    const AmPicture two{{10, 20, 30, 40}, {200, 150, 100, 7}};
    EXPECT_EQ(applied("simple-elegent", two).row(0), (Row{{15, 20, 26, 40}, {171, 145, 119, 7}}));
    EXPECT_EQ(applied("bw-yellow", two).row(0), (Row{{3, 38, 44, 40}, {148, 183, 189, 7}}));
    EXPECT_EQ(applied("fresh-new", two).row(0), (Row{{75, 32, 42, 40}, {163, 151, 101, 7}}));
}

TEST(AmLooks, RainbowsGiveEveryRowItsHue)
{
    AmPicture column(1, 12);
    for (int y = 0; y < 12; ++y)
        column.view().at(0, y) = {10, 20, 30, u8(y)};
    // The hues go from red over yellow, green, cyan, blue and magenta, in half steps.
    EXPECT_EQ(applied("rainbow", column).pixels(),
        (Row{{10, 10, 30, 0}, {10, 20, 30, 1}, {10, 30, 30, 2}, {10, 30, 20, 3}, {10, 30, 10, 4},
            {20, 30, 10, 5}, {30, 30, 10, 6}, {30, 20, 10, 7}, {30, 10, 10, 8}, {30, 10, 20, 9},
            {30, 10, 30, 10}, {20, 10, 30, 11}}));
    // The hues go from 90 degrees down to 35.
    EXPECT_EQ(applied("rainbow2", column).pixels(),
        (Row{{0, 30, 15, 0}, {0, 30, 17, 1}, {0, 30, 20, 2}, {0, 30, 22, 3}, {0, 30, 25, 4}, {0, 30, 27, 5},
            {0, 30, 30, 6}, {0, 27, 30, 7}, {0, 25, 30, 8}, {0, 22, 30, 9}, {0, 20, 30, 10},
            {0, 17, 30, 11}}));
}

TEST(AmSketches, DrawTheInsideAndKeepTheBorder)
{
    const AmPicture step = thrice(greys({40, 40, 40, 140, 140, 140}));
    const auto drawn = [&](Am id) { return reds(applied(id, step).row(1)); };
    EXPECT_EQ(drawn("shadow"), (std::vector<int>{40, 185, 21, 244, 244, 140}));
    EXPECT_EQ(drawn("wash"), (std::vector<int>{40, 80, 0, 0, 255, 140}));
    EXPECT_EQ(drawn("comic"), (std::vector<int>{40, 32, 0, 225, 195, 140}));

    constexpr Bgra kFlat{200, 150, 100, 9};
    const AmPicture flat = thrice({kFlat, kFlat, kFlat});
    for (const auto& [id, inside] :
        {std::pair{83, Bgra{246, 246, 246, 9}}, {84, {255, 255, 200, 9}}, {85, {225, 206, 164, 9}}}) {
        Row expected(9, kFlat);
        expected[4] = inside;
        EXPECT_EQ(applied(id, flat).pixels(), expected) << id;
    }
}

TEST(AmSketches, ThePhotoIsDrawnInsideATurnedQuadrilateral)
{
    AmPicture photo(100, 100);
    photo.fill({70, 60, 50, 9});
    AmPicture out = applied("photo-with-skecth", photo);
    int drawn = 0;
    for (const Bgra p : out.pixels()) {
        EXPECT_TRUE(p == (Bgra{70, 60, 50, 9}) || p == (Bgra{225, 225, 225, 9}));
        drawn += p.b == 225;
    }
    EXPECT_EQ(drawn, 2421);
    const auto span = [&](int y) {
        const auto isDrawn = [&](int x) { return out.at(x, y).b == 225; };
        int first = 0;
        int last = 99;
        while (first < 100 && !isDrawn(first))
            ++first;
        while (last >= first && !isDrawn(last))
            --last;
        return std::pair(first, last);
    };
    EXPECT_EQ(span(11), std::pair(100, 99)) << "nothing below the lowest corner";
    EXPECT_EQ(span(12), std::pair(64, 64));
    EXPECT_EQ(span(30), std::pair(24, 71));
    EXPECT_EQ(span(50), std::pair(27, 78));
    EXPECT_EQ(span(70), std::pair(31, 48));
    EXPECT_EQ(span(76), std::pair(31, 31));
    EXPECT_EQ(span(77), std::pair(100, 99));
}

TEST(AmSoft, NoiseIsDrawnInOrderAndAveragedBothWays)
{
    AmPicture blue(4, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            blue.view().at(x, y) = {u8(40 * x + 100 * (y == 1)), 7, 99, 9};
    AmPicture out = applied("bw-noise", blue);
    EXPECT_EQ(reds(out.pixels()), (std::vector<int>{78, 102, 132, 157, 67, 86, 121, 143, 88, 103, 137, 156}));
    EXPECT_EQ(out.at(2, 1), (Bgra{121, 121, 121, 9}));
    pixels::RandomGenerator expected(1);
    expected.skip(12);
    EXPECT_EQ(pixels::threadRandom().next(), expected.next());

    AmPicture row(3, 1);
    AmPicture column(1, 3);
    row.fill({100, 0, 0, 9});
    column.fill({100, 0, 0, 9});
    EXPECT_EQ(reds(applied("bw-noise", row).pixels()), (std::vector<int>{82, 96, 102}));
    EXPECT_EQ(reds(applied("bw-noise", column).pixels()), (std::vector<int>{82, 96, 102}));
}

TEST(AmSoft, FocusBlursByHalfSteps)
{
    const AmPicture row = greys({0, 0, 0, 0, 0, 200, 200, 200, 200, 200, 200, 200, 200, 90});
    EXPECT_EQ(reds(applied("fuzzy-img", row).pixels()),
        (std::vector<int>{0, 0, 0, 0, 36, 238, 243, 246, 248, 248, 248, 247, 247, 141}));
    AmPicture column(1, 14);
    for (int y = 0; y < 14; ++y)
        column.view().at(0, y) = AmPicture(row).at(y, 0);
    EXPECT_EQ(reds(applied("fuzzy-img", column).pixels()),
        (std::vector<int>{0, 0, 0, 0, 7, 235, 240, 244, 248, 248, 249, 248, 248, 141}))
        << "columns see their rows as they were";
    AmPicture flat(300, 140);
    flat.fill({100, 100, 100, 9});
    EXPECT_EQ(applied("fuzzy-img", flat).pixels(), Row(300 * 140, {168, 168, 168, 9}));
}

TEST(AmSoft, TheRadiusOfTheFocusFollowsTheBytesOfThePicture)
{
    // Black but for a white half: the first column that is lighter tells the radius.
    const auto reach = [](i32 dataSize) {
        AmPicture picture(400, 1);
        for (int x = 0; x < 400; ++x)
            picture.view().at(x, 0) = x < 200 ? Bgra{60, 60, 60, 9} : Bgra{255, 255, 255, 9};
        test::AmBlock block("fuzzy-img");
        KEXSDK::AmImageDesc desc = picture.desc();
        desc.dataSize = dataSize;
        EXPECT_EQ(KEXSDK::AmApplyEffect(block.get(), &desc, nullptr), 0);
        int x = 0;
        while (picture.at(x, 0) == picture.at(0, 0))
            ++x;
        return 200 - x;
    };
    EXPECT_EQ(reach(1600), 5);
    EXPECT_EQ(reach((1 << 21) - 1), 5);
    EXPECT_EQ(reach(32 << 20), 21);
}

} // namespace
