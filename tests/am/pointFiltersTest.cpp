// Literal pixels through the effects of the library that look at one pixel at a time.
#include "am/AmFixture.h"

namespace {

using test::Am;
using test::AmPicture;
using test::applied;
using test::Bgra;
using test::percent;

constexpr Bgra kDark{10, 20, 30, 40};
constexpr Bgra kLight{200, 150, 100, 7};

TEST(AmPoints, EveryLookMakesItsColoursAndKeepsAlpha)
{
    struct Row {
        Am id;
        Bgra dark;
        Bgra light;
    };
    constexpr Row kRows[] = {
        {"b-channel", {10, 0, 0, 40}, {200, 0, 0, 7}},
        {"g-channel", {0, 20, 0, 40}, {0, 150, 0, 7}},
        {"r-channel", {0, 0, 30, 40}, {0, 0, 100, 7}},
        {"a-channel", {0, 0, 0, 40}, {0, 0, 0, 7}},
        {"gray-scale", {22, 22, 22, 40}, {141, 141, 141, 7}},
        {"binary", {0, 0, 0, 40}, {255, 255, 255, 7}},
        {"x-rays", {235, 235, 235, 40}, {105, 105, 105, 7}},
        {"negative", {245, 235, 225, 40}, {55, 105, 155, 7}},
        {"thermal", {20, 20, 0, 40}, {0, 105, 150, 7}},
        {"thitone", {0, 0, 255, 40}, {0, 255, 0, 7}},
        {"thitone2", {255, 0, 255, 40}, {0, 255, 255, 7}},
        {"solarize", {10, 20, 30, 40}, {56, 106, 100, 7}},
        {"cold", {130, 80, 0, 40}, {255, 210, 0, 7}},
        {"cool", {70, 50, 0, 40}, {255, 180, 40, 7}},
        {"warm", {0, 0, 75, 40}, {155, 128, 145, 7}},
        {"hot", {0, 0, 120, 40}, {110, 105, 190, 7}},
        {"one-color", {22, 22, 22, 40}, {141, 141, 141, 7}},
        {"brown", {0, 30, 69, 40}, {0, 149, 187, 7}},
        {"chocolate", {0, 14, 53, 40}, {103, 133, 172, 7}},
        {"wheat", {0, 21, 43, 40}, {95, 140, 162, 7}},
        {"linen", {10, 21, 30, 40}, {129, 140, 149, 7}},
        {"purple", {97, 0, 97, 40}, {216, 89, 216, 7}},
        {"olive", {61, 60, 0, 40}, {180, 179, 52, 7}},
        {"teal", {0, 37, 37, 40}, {28, 156, 156, 7}},
        {"blue", {246, 0, 0, 40}, {255, 112, 113, 7}},
        {"green", {0, 128, 0, 40}, {0, 247, 0, 7}},
        {"red", {0, 0, 199, 40}, {65, 66, 255, 7}},
        {"yellow", {0, 52, 49, 40}, {0, 171, 168, 7}},
        {"fuchsia", {170, 0, 171, 40}, {255, 37, 255, 7}},
        {"cyan", {97, 99, 0, 40}, {216, 218, 0, 7}},
        {"hoodwink", {1, 11, 9, 40}, {22, 87, 30, 7}},
        {"cyan-blue", {13, 24, 9, 40}, {188, 144, 30, 7}},
        {"tcvga", {0, 0, 0, 40}, {169, 169, 169, 7}},
        {"cartoon", {0, 0, 0, 40}, {219, 147, 112, 7}},
        {"lnk", {7, 7, 7, 40}, {181, 181, 181, 7}},
        {64, {0, 0, 0, 40}, {242, 170, 74, 7}},
    };
    for (const Row& row : kRows)
        EXPECT_EQ(applied(row.id, {kDark, kLight}).row(0), (std::vector<Bgra>{row.dark, row.light}))
            << row.id;
}

TEST(AmPoints, ForcedSettingsIgnoreTheBlocks)
{
    const auto otherwise = [](KEXSDK::AmEffectParams& b) {
        b.percent = 99;
        b.red = b.green = b.blue = 77;
        b.variant = 3;
    };
    EXPECT_EQ(applied("b-channel", {kLight}, otherwise).at(0, 0), (Bgra{200, 0, 0, 7}));
    EXPECT_EQ(applied("cold", {kLight}, otherwise).at(0, 0), (Bgra{255, 210, 0, 7}));
    EXPECT_EQ(applied("red", {kLight}, otherwise).at(0, 0), (Bgra{65, 66, 255, 7}));
}

TEST(AmPoints, OneColourTakesItsHueFromTheBlock)
{
    const auto greenish = [](KEXSDK::AmEffectParams& b) { b.red = 10, b.green = 200, b.blue = 60; };
    EXPECT_EQ(applied("one-color", {kLight}, greenish).at(0, 0), (Bgra{73, 215, 23, 7}));
}

TEST(AmPoints, BinaryRunsFromAllWhiteToAllBlack)
{
    const AmPicture ends{{0, 0, 0, 1}, {255, 255, 255, 2}};
    using Row = std::vector<Bgra>;
    EXPECT_EQ(applied("binary", ends, percent(0)).row(0), (Row{{255, 255, 255, 1}, {255, 255, 255, 2}}));
    EXPECT_EQ(applied("binary", ends, percent(-7)).row(0), (Row{{255, 255, 255, 1}, {255, 255, 255, 2}}));
    EXPECT_EQ(applied("binary", ends, percent(100)).row(0), (Row{{0, 0, 0, 1}, {0, 0, 0, 2}}));
    EXPECT_EQ(applied("binary", ends, percent(1)).row(0), (Row{{0, 0, 0, 1}, {255, 255, 255, 2}}));
}

TEST(AmPoints, TonesChangeAtTheirBorders)
{
    // Blue + 2 green + red on both sides of 5, 10 and 14 times 64.
    const AmPicture steps{{63, 128, 0, 0}, {64, 128, 0, 0}, {129, 255, 0, 0}, {130, 255, 0, 0},
        {255, 255, 130, 0}, {255, 255, 131, 0}};
    using Row = std::vector<Bgra>;
    constexpr Bgra kRed{0, 0, 255, 0};
    constexpr Bgra kGreen{0, 255, 0, 0};
    constexpr Bgra kBlue{255, 0, 0, 0};
    constexpr Bgra kYellow{0, 255, 255, 0};
    constexpr Bgra kCyan{255, 255, 0, 0};
    constexpr Bgra kMagenta{255, 0, 255, 0};
    EXPECT_EQ(applied("thitone", steps).row(0), (Row{kRed, kGreen, kGreen, kBlue, kBlue, kBlue}));
    EXPECT_EQ(applied("thitone2", steps).row(0), (Row{kMagenta, kYellow, kYellow, kCyan, kCyan, kGreen}));
    EXPECT_EQ(applied("solarize", {{127, 128, 129, 0}}).at(0, 0), (Bgra{127, 128, 127, 0}));
    EXPECT_EQ(applied("thermal", {{128, 128, 128, 0}, {127, 127, 127, 0}}).row(0),
        (Row{{0, 127, 128, 0}, {127, 127, 0, 0}}));
}

TEST(AmPoints, ExposureIsLogarithmicAroundItsOffset)
{
    EXPECT_EQ(applied("exposure", {{0, 15, 255, 1}}).at(0, 0), (Bgra{0, 128, 255, 1}));
    EXPECT_EQ(applied("exposure", {{0, 15, 255, 1}}, percent(60)).at(0, 0), (Bgra{10, 138, 255, 1}));
}

TEST(AmPoints, ContrastsGrowWithThePercentage)
{
    const AmPicture greys{{64, 64, 64, 0}, {200, 200, 200, 0}};
    using Row = std::vector<Bgra>;
    EXPECT_EQ(applied("lnk", greys, percent(0)).row(0), (Row{{41, 41, 41, 0}, {221, 221, 221, 0}}));
    EXPECT_EQ(applied("lnk", greys, percent(100)).row(0), (Row{{16, 16, 16, 0}, {243, 243, 243, 0}}));
    EXPECT_EQ(applied(64, {{0, 64, 192, 0}}, percent(0)).at(0, 0), (Bgra{0, 37, 218, 0}));
    EXPECT_EQ(applied(64, {{0, 64, 192, 0}}, percent(100)).at(0, 0), (Bgra{0, 9, 246, 0}));
}

TEST(AmCurves, StoredCurvesPassTheirFiveEntriesAndNeverFall)
{
    struct Look {
        Am id;
        std::array<int, 5> r, g, b;
    };
    // Pictures of one row are too low for film damage.
    constexpr Look kLooks[] = {
        {"70s", {25, 78, 131, 184, 236}, {11, 67, 124, 180, 226}, {0, 55, 110, 166, 220}},
        {"japaness", {25, 90, 178, 224, 235}, {25, 101, 174, 228, 249}, {105, 151, 218, 254, 255}},
        {"lomo-movie", {0, 76, 161, 211, 255}, {0, 59, 121, 191, 250}, {0, 41, 86, 175, 229}},
        {"cross-process", {0, 51, 194, 254, 255}, {0, 88, 184, 236, 255}, {60, 97, 148, 186, 209}},
        {"retro", {0, 60, 146, 220, 255}, {21, 78, 131, 189, 243}, {57, 96, 135, 164, 192}},
        {"cinnamon", {0, 52, 128, 186, 187}, {0, 52, 128, 204, 236}, {114, 114, 128, 204, 253}},
        {"x-pro", {0, 39, 141, 222, 254}, {0, 0, 134, 220, 254}, {0, 83, 175, 233, 254}},
    };
    constexpr std::array<int, 5> kEntries{0, 64, 128, 192, 255};
    AmPicture ramp(256, 1);
    for (int x = 0; x < 256; ++x)
        ramp.view().at(x, 0) = {u8(x), u8(x), u8(x), u8(x)};
    for (const Look& look : kLooks) {
        const auto out = applied(look.id, ramp).row(0);
        for (std::size_t i = 0; i < 5; ++i)
            EXPECT_EQ(out[std::size_t(kEntries[i])],
                (Bgra{u8(look.b[i]), u8(look.g[i]), u8(look.r[i]), u8(kEntries[i])}))
                << look.id;
        for (std::size_t x = 1; x < 256; ++x)
            EXPECT_TRUE(out[x].b >= out[x - 1].b && out[x].g >= out[x - 1].g && out[x].r >= out[x - 1].r)
                << look.id << " at " << x;
    }
}

TEST(AmCurves, FourSeasonsHaveTheirBandsAndBlackColumns)
{
    AmPicture picture(17, 1);
    picture.fill({192, 192, 192, 9});
    const auto out = applied("four-season", picture).row(0);
    const Bgra black{0, 0, 0, 9};
    const std::vector<Bgra> expected{{186, 236, 254, 9}, {186, 236, 254, 9}, black, black, // 17 >> 2 is 4
        {153, 193, 199, 9}, {153, 193, 199, 9}, black, black, {147, 170, 237, 9}, {147, 170, 237, 9}, black,
        black, {255, 237, 102, 9}, {255, 237, 102, 9}, {255, 237, 102, 9}, {255, 237, 102, 9},
        {255, 237, 102, 9}};
    EXPECT_EQ(out, expected);

    AmPicture narrow(6, 1);
    narrow.fill({192, 192, 192, 9});
    EXPECT_EQ(applied("four-season", narrow).row(0),
        (std::vector<Bgra>{{186, 236, 254, 9}, {153, 193, 199, 9}, {147, 170, 237, 9}, {255, 237, 102, 9},
            {255, 237, 102, 9}, {255, 237, 102, 9}}));
    EXPECT_EQ(applied("four-season", {{192, 192, 192, 9}}).at(0, 0), (Bgra{255, 237, 102, 9}));
}

} // namespace
