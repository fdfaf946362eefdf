// Stars, snow flakes and bubbles over many frames.
#include "am/AmFixture.h"

#include <cstring>

namespace {

using test::AmBlock;
using test::AmPicture;
using test::Bgra;

struct Particle {
    i32 size, x, y, look;
};

class AmParticles : public testing::TestWithParam<i32> {
protected:
    static AmPicture frame(AmBlock& block, int width = 640, int height = 480)
    {
        AmPicture picture(width, height);
        picture.fill({100, 100, 100, 7});
        EXPECT_EQ(test::apply(block, picture), 0);
        EXPECT_TRUE(picture.surroundingsIntact());
        return picture;
    }
    static std::vector<Particle> particles(AmBlock& block, int count)
    {
        EXPECT_GE(block->scratchCCapacity, 16 * count);
        std::vector<Particle> set(std::size_t(count), Particle{});
        std::memcpy(set.data(), block->scratchC, set.size() * sizeof(Particle));
        return set;
    }
    void SetUp() override
    {
        AmBlock first("star"); // the first block of a process seeds the generator with the time
        pixels::threadRandom().seed(3);
    }
};

TEST_P(AmParticles, FiftyFramesMoveOnAndKeepAlpha)
{
    AmBlock block(GetParam());
    block->frameRate = 25;
    auto before = frame(block).pixels();
    for (int i = 0; i < 50; ++i) {
        const auto now = frame(block).pixels();
        EXPECT_NE(now, before) << "frame " << i;
        EXPECT_TRUE(std::ranges::all_of(now, [](Bgra p) { return p.a == 7; }));
        before = now;
    }
}

TEST_P(AmParticles, ANewSizeStartsANewSet)
{
    AmBlock block(GetParam());
    block->frameRate = 25;
    frame(block);
    EXPECT_FALSE(block->dirty & 32);
    const auto first = particles(block, 2);
    frame(block, 639, 480);
    EXPECT_FALSE(block->dirty & 32);
    EXPECT_NE(std::memcmp(first.data(), particles(block, 2).data(), 32), 0);
}

TEST_P(AmParticles, StrangeFrameRatesAreHarmless)
{
    for (const float rate : {0.0f, -1.0f, 1e-40f, 1e30f, std::numeric_limits<float>::quiet_NaN()}) {
        AmBlock block(GetParam());
        block->frameRate = rate;
        for (int i = 0; i < 3; ++i)
            frame(block, 64, 48);
    }
}

INSTANTIATE_TEST_SUITE_P(Ids, AmParticles, testing::Values(60, 61, 62));

using AmSnow = AmParticles;
using AmBubbles = AmParticles;
using AmStars = AmParticles;

TEST_F(AmSnow, OnePercentOf640PixelsAreSixFlakesThatFall)
{
    AmBlock block("snow");
    block->frameRate = 25;
    block->percent = 1;
    frame(block);
    EXPECT_EQ(block->scratchCCapacity, 6 * 16);
    auto before = particles(block, 6);
    int fell = 0;
    for (int i = 0; i < 50; ++i) {
        frame(block);
        const auto now = particles(block, 6);
        for (std::size_t k = 0; k < 6; ++k) {
            EXPECT_TRUE(now[k].look >= 200 && now[k].look <= 255);
            EXPECT_TRUE(now[k].size >= 1 && now[k].size <= 6);
            fell += now[k].x == before[k].x && now[k].y == before[k].y - (before[k].size + 1);
        }
        before = now;
    }
    EXPECT_GT(fell, 250); // the others were reborn
}

TEST_F(AmSnow, DirectionsMoveFlakesUpDownRightAndLeft)
{
    struct Row {
        i32 direction;
        int dx, dy;
    };
    for (const Row row : {Row{-3, 0, 1}, {0, 0, 1}, {1, 0, -1}, {2, 1, 0}, {3, -1, 0}, {99, -1, 0}}) {
        AmBlock block("snow");
        block->frameRate = 50; // half a step per frame
        block->direction = row.direction;
        frame(block, 1024, 1024);
        const auto before = particles(block, 512);
        frame(block, 1024, 1024);
        const auto now = particles(block, 512);
        int moved = 0;
        for (std::size_t k = 0; k < before.size(); ++k) {
            // 4 size + 1, halved; the sum with the place is truncated.
            const int step = 4 * before[k].size + 1;
            const int against = row.dx + row.dy < 0 ? (step + 1) / 2 : step / 2;
            moved += now[k].x == before[k].x + row.dx * against && now[k].y == before[k].y + row.dy * against;
        }
        EXPECT_GT(moved, 480) << row.direction;
    }
}

TEST_F(AmSnow, AFlakeIsBrightestInItsMiddle)
{
    AmBlock block("snow");
    block->frameRate = 25;
    block->percent = 1;
    block->radius = 0;
    AmPicture picture(640, 480);
    ASSERT_EQ(test::apply(block, picture), 0); // flakes of size 1 on black
    for (const Particle& flake : particles(block, 6)) {
        const int x = std::clamp(flake.x * 640 >> 10, 2, 637);
        const int y = std::clamp(flake.y * 480 >> 10, 2, 477);
        const int centre = picture.at(x, y).b;
        EXPECT_EQ(centre, flake.look * (256 - 85) >> 8);
        EXPECT_LT(picture.at(x + 1, y).b, centre);
        EXPECT_GT(picture.at(x + 1, y).b, 0);
        EXPECT_EQ(picture.at(x + 2, y).b, 0);
    }
}

TEST_F(AmBubbles, AreColouredRingsOfTheirDraws)
{
    AmBlock block("bubble");
    block->frameRate = 25;
    block->percent = 1;
    block->radius = 100;
    AmPicture picture(640, 480);
    pixels::threadRandom().seed(17);
    ASSERT_EQ(test::apply(block, picture), 0);
    EXPECT_EQ(block->scratchCCapacity, 2 * 16);
    const auto born = particles(block, 2);
    EXPECT_EQ(born[0].size, 20);
    EXPECT_EQ(born[1].size, 14);
    EXPECT_EQ(born[1].x, 215);
    EXPECT_EQ(born[1].y, 93);
    EXPECT_EQ(born[1].look, 186 << 16 | 93 << 8 | 215);
    // Centre (537, 174), radius 35: clear inside, 131 / 256 of the colour at 32 from the centre.
    EXPECT_EQ(picture.at(537, 174), (Bgra{0, 0, 0, 255}));
    EXPECT_EQ(picture.at(537 - 12, 174), (Bgra{0, 0, 0, 255}));
    EXPECT_EQ(picture.at(537 - 32, 174), (Bgra{110, 47, 95, 255}));
    EXPECT_EQ(picture.at(537, 174 - 32), (Bgra{110, 47, 95, 255}));
    EXPECT_EQ(picture.at(537 + 35, 174), (Bgra{0, 0, 0, 255}));
}

TEST_F(AmBubbles, ARadiusBelowFourMakesTheSmallestOnes)
{
    AmBlock block("bubble");
    block->frameRate = 25;
    block->radius = 3;
    frame(block);
    for (const Particle& bubble : particles(block, 106))
        EXPECT_EQ(bubble.size, 1);
}

TEST_F(AmStars, KeepTheirPlacesWhileTheyTwinkle)
{
    AmBlock block("star");
    block->frameRate = 25;
    frame(block);
    const auto before = particles(block, 1280);
    for (int i = 0; i < 50; ++i)
        frame(block);
    const auto now = particles(block, 1280);
    for (std::size_t k = 0; k < now.size(); ++k) {
        EXPECT_TRUE(now[k].x == before[k].x && now[k].y == before[k].y);
        EXPECT_TRUE(now[k].x >= 1 && now[k].x <= 1023 && now[k].look >= 1 && now[k].look <= 255);
        EXPECT_TRUE(now[k].size >= 1 && now[k].size <= 3);
    }
}

TEST_F(AmStars, DoNotTwinkleAboveTheFastestRate)
{
    AmBlock block("star");
    block->frameRate = 400;
    const auto first = frame(block).pixels();
    EXPECT_EQ(frame(block).pixels(), first);
}

} // namespace
