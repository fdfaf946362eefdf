// Panels, dark rims, the broken television and the kaleidoscope.
#include "am/AmFixture.h"
#include "effects/am/looks/brokenTelevision.h"

namespace {

using test::Am;
using test::AmPicture;
using test::applied;
using test::Bgra;
using test::numbered;
using Row = std::vector<Bgra>;

u64 digest(AmPicture picture)
{
    u64 hash = 0xcbf29ce484222325; // FNV-1a
    for (int y = 0; y < picture.view().height(); ++y)
        for (const Bgra p : picture.view().row(y))
            for (const u8 byte : {p.b, p.g, p.r, p.a})
                hash = (hash ^ byte) * 0x100000001b3;
    return hash;
}

TEST(AmPanels, EveryLayoutIsItsOwn)
{
    struct Look {
        Am id;
        u64 large;
        u64 small;
    };
    // Digests of the looks of numbered pictures: 96 x 72, and 13 x 11, where panels overlap and vanish.
    constexpr Look kLooks[] = {
        {"jigsaw-a", 0x6de3d020dda6f81d, 0x31e9675c6105c6f2},
        {"jigsaw-b", 0x05d7c15b72e0db5a, 0xad30136bed2e2d22},
        {"jigsaw-c", 0x701d44bb9a8b3b9a, 0xf44f396d14db8c53},
        {"jigsaw-d", 0xcbfa01b17f74c8e3, 0x9d71059868563bde},
        {"jigsaw-e", 0x9237e1390f7f28fc, 0x4c2c8e5bcb3038bb},
        {"jigsaw-f", 0xfc95652de22e62f4, 0xf38bd81dd1470950},
    };
    for (const Look& look : kLooks) {
        EXPECT_EQ(digest(applied(look.id, numbered(96, 72))), look.large) << look.id;
        EXPECT_EQ(digest(applied(look.id, numbered(13, 11))), look.small) << look.id;
    }
}

TEST(AmPanels, LinesTintsAndShadowsLieWhereTheyShould)
{
    AmPicture black(96, 72);
    black.fill({0, 0, 0, 9});
    AmPicture cross = applied("jigsaw-c", [] {
        AmPicture white(96, 72);
        white.fill({255, 255, 255, 9});
        return white;
    }());
    for (int y = 0; y < 72; ++y)
        for (int x = 0; x < 96; ++x) {
            const bool onCross = x == 47 || x == 48 || y == 35 || y == 36;
            EXPECT_EQ((cross.at(x, y) == Bgra{0, 0, 0, 9}), onCross) << x << ", " << y;
        }

    AmPicture window = applied("jigsaw-d", black);
    constexpr Bgra kGreen{7, 59, 21, 9};
    constexpr Bgra kWhite{255, 255, 255, 9};
    for (const int y : {0, 17}) {
        EXPECT_EQ(window.at(57, y), kGreen);
        const int shadow[] = {245, 224, 194, 153, 102};
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(window.at(58 + i, y),
                (Bgra{u8(7 * shadow[i] >> 8), u8(59 * shadow[i] >> 8), u8(21 * shadow[i] >> 8), 9}));
        for (const int x : {63, 64, 65})
            EXPECT_EQ(window.at(x, y), kWhite);
        EXPECT_EQ(window.at(66, y), (Bgra{99, 5, 16, 9}));
    }
    for (int y = 63; y < 72; ++y)
        EXPECT_EQ(window.row(y), Row(96, {103, 62, 9, 9}));

    // Where a line crosses the shadows beside others, they are grey.
    AmPicture crossing = applied("jigsaw-e", black);
    EXPECT_EQ(crossing.at(45 + 2, 34), (Bgra{102, 102, 102, 9}));
    EXPECT_EQ(crossing.at(45 + 6, 34), (Bgra{245, 245, 245, 9}));
    EXPECT_EQ(crossing.at(71 - 5, 34), (Bgra{245, 245, 245, 9}));
    EXPECT_EQ(crossing.at(71 - 1, 34), (Bgra{102, 102, 102, 9}));
}

TEST(AmRims, AegeanRaisesItsCentreAndDarkensItsRim)
{
    AmPicture picture(20, 20);
    picture.fill({100, 100, 100, 9});
    AmPicture out = applied("aegean", picture);
    // 126 through the curves, then a tenth of yellow screened over red and green.
    EXPECT_EQ(out.at(10, 10), (Bgra{126, 154, 163, 9}));
    EXPECT_EQ(out.at(0, 10), (Bgra{100, 112, 92, 9}));
    EXPECT_EQ(out.at(0, 0), (Bgra{71, 60, 39, 9}));

    test::AmBlock block("aegean");
    block->radius = 3;
    block->posX = block->posY = 0;
    EXPECT_EQ(test::apply(block, picture), KEXSDK::kAmOk);
    EXPECT_EQ(block->radius, 65);
    // No distance is left to fall off over: everything is as dark as the curves leave black.
    EXPECT_EQ(picture.pixels(), Row(400, {54, 27, 27, 9}));
}

TEST(AmRims, TheBlackVignetteIsClearThenFadesThenBlack)
{
    AmPicture row(21, 1);
    row.fill({50, 100, 200, 9});
    constexpr Bgra kBlack{0, 0, 0, 255};
    // The picture fades to black between radii of 2 and 6.
    Row half(21, kBlack);
    half[4] = half[16] = {0, 0, 0, 9};
    half[5] = half[15] = {12, 25, 50, 9};
    half[6] = half[14] = {25, 50, 100, 9};
    half[7] = half[13] = {37, 75, 150, 9};
    for (int x = 8; x <= 12; ++x)
        half[std::size_t(x)] = {50, 100, 200, 9};
    EXPECT_EQ(applied("vignette-radius", row).row(0), half);

    Row least(21, kBlack);
    least[9] = least[11] = {0, 0, 0, 9};
    least[10] = {50, 100, 200, 9};
    EXPECT_EQ(applied("vignette-radius", row, test::percent(0)).row(0), least);
    least[9] = least[11] = kBlack;
    EXPECT_EQ(applied("vignette-radius", row, test::percent(-1000)).row(0), least)
        << "a radius is never below 0";
    for (const int wide : {150, 10000, 1 << 30})
        EXPECT_EQ(applied("vignette-radius", row, test::percent(wide)).row(0), row.row(0));
}

class AmTelevision : public testing::Test {
protected:
    void SetUp() override { KEXSDK::am::restartTelevision(); }
};

TEST_F(AmTelevision, RollsFiveRowsFurtherWithEachPictureOfAnyNode)
{
    for (int frame = 0; frame < 20; ++frame) {
        AmPicture out = applied("bad-tv-signal", numbered(200, 60));
        for (int y = 0; y < 60; ++y) {
            const int from = (5 * frame + y) % 60;
            if (from < 10 || from >= 50) {
                EXPECT_EQ(out.row(y), Row(200, {0, 0, 0, 0})) << frame << ", " << y;
                continue;
            }
            const auto row = out.row(y);
            const auto start = std::ranges::find(row, 0, &Bgra::b) - row.begin();
            EXPECT_GE(start, 73) << "the least shift of the patterns";
            EXPECT_LE(start, 165);
            for (int x = 0; x < 200; ++x)
                ASSERT_EQ(row[std::size_t((start + x) % 200)],
                    (Bgra{u8(x), u8(from), u8(x ^ from), u8(x + 3 * from)}));
        }
    }
}

TEST_F(AmTelevision, APatternOfShiftsIsDrawnForAPicture)
{
    // The shifts of rows 10 to 14 in each pattern.
    const std::vector<std::vector<int>> patterns{{141, 148, 154, 165, 165}, {128, 120, 120, 121, 118},
        {128, 130, 130, 126, 128}, {120, 120, 123, 127, 127}};
    std::vector<bool> seen(4);
    for (u32 seed = 1; seed < 40; ++seed) {
        KEXSDK::am::restartTelevision();
        AmPicture out = applied(
            "bad-tv-signal", numbered(200, 30), [](KEXSDK::AmEffectParams&) {}, seed);
        std::vector<int> shifts;
        for (int y = 10; y < 15; ++y) {
            const Row row = out.row(y);
            shifts.push_back(int(std::ranges::find(row, 0, &Bgra::b) - row.begin()));
        }
        pixels::RandomGenerator expected(seed);
        const int pattern = expected.next() % 4;
        EXPECT_EQ(shifts, patterns[std::size_t(pattern)]);
        seen[std::size_t(pattern)] = true;
    }
    EXPECT_EQ(seen, std::vector<bool>(4, true));
}

TEST_F(AmTelevision, FasterFilmKeepsItsPatternLonger)
{
    // At 72 frames per second a pattern lasts three pictures, and a picture rolls by one row.
    test::AmBlock block("bad-tv-signal");
    block->frameRate = 72;
    pixels::threadRandom().seed(1);
    for (int frame = 0; frame < 6; ++frame) {
        AmPicture picture = numbered(200, 60);
        EXPECT_EQ(test::apply(block, picture), KEXSDK::kAmOk);
        EXPECT_EQ(picture.at(0, 20).g, 20 + frame);
    }
    pixels::RandomGenerator expected(1);
    expected.skip(2);
    EXPECT_EQ(pixels::threadRandom().next(), expected.next());
}

TEST(AmKaleidoscope, TurnsTheTriangleAroundItsCorners)
{
    AmPicture out = applied("kaleidoscope", numbered(60, 40));
    struct Fetch {
        int x, y, fromX, fromY;
    };
    constexpr Fetch kFetches[] = {{30, 20, 30, 20}, {2, 20, 30, 3}, {55, 20, 28, 5}, {30, 1, 30, 5},
        {20, 37, 32, 25}, {45, 37, 24, 20}, {0, 0, 19, 10}, {59, 39, 20, 7}};
    for (const Fetch& f : kFetches)
        EXPECT_EQ(out.at(f.x, f.y), numbered(60, 40).at(f.fromX, f.fromY)) << f.x << ", " << f.y;
    EXPECT_EQ(digest(out), 0xfb9bcd923e91cc5au);
}

} // namespace
