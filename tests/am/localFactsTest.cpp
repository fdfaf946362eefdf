// Facts about the library's effects that read a kept copy of the picture.
#include "am/AmFixture.h"
#include "effects/am/library/CSimpleAmEffect.h"
#include "effects/am/library/amScratch.h"

#include <sys/mman.h>

#include <array>
#include <cstring>

namespace {

using namespace KEXSDK;
using test::Am;
using test::AmBlock;
using test::AmPicture;
using test::applied;
using test::Bgra;
using test::percent;

AmPicture flat(int width, int height, Bgra value)
{
    AmPicture picture(width, height);
    picture.fill(value);
    return picture;
}

AmPicture noise(int width, int height)
{
    AmPicture picture(width, height, 8);
    picture.fillWithNoise(5);
    return picture;
}

// A picture of nine pixels with these greys, row by row.
AmPicture nine(std::array<u8, 9> greys)
{
    AmPicture picture(3, 3);
    for (int i = 0; i < 9; ++i)
        picture.view().at(i % 3, i / 3) = pixels::grey({0, 0, 0, u8(i)}, greys[std::size_t(i)]);
    return picture;
}

int centreOf(Am id, std::array<u8, 9> greys, i32 strength = 50)
{
    AmPicture out = applied(id, nine(greys), percent(strength));
    const Bgra p = out.at(1, 1);
    EXPECT_EQ(p, pixels::grey({0, 0, 0, 4}, p.b));
    return p.b;
}

TEST(AmNeighbours, SharpAndBlurWeighTheNine)
{
    EXPECT_EQ(centreOf("sharp", {10, 10, 10, 10, 20, 10, 10, 10, 10}), 100);
    EXPECT_EQ(centreOf("sharp", {50, 60, 70, 80, 59, 40, 70, 60, 90}), 11);
    EXPECT_EQ(centreOf("sharp", {9, 9, 9, 9, 200, 9, 9, 9, 9}), 255);
    EXPECT_EQ(centreOf("sharp", {90, 9, 9, 9, 5, 9, 9, 9, 9}), 0);
    EXPECT_EQ(centreOf("blur2", {255, 255, 255, 255, 255, 255, 255, 255, 255}), 255);
    EXPECT_EQ(centreOf("blur2", {16, 0, 0, 0, 0, 0, 0, 0, 0}), 1);
    EXPECT_EQ(centreOf("blur2", {0, 16, 0, 0, 0, 0, 0, 0, 0}), 2);
    EXPECT_EQ(centreOf("blur2", {0, 0, 0, 0, 17, 0, 0, 16, 0}), 6);
}

TEST(AmNeighbours, EdgesAreTwoGradientsLimitedTogether)
{
    EXPECT_EQ(centreOf("sketch", {9, 9, 9, 9, 9, 9, 9, 9, 9}, 50), 230);
    EXPECT_EQ(centreOf("sketch", {9, 9, 9, 9, 9, 9, 9, 9, 9}, 101), 205);
    EXPECT_EQ(centreOf("sketch", {0, 0, 0, 7, 7, 7, 10, 10, 10}, 0), 235);
    EXPECT_EQ(centreOf("sketch", {0, 0, 200, 0, 0, 200, 0, 0, 200}, 100), 78);
    EXPECT_EQ(centreOf("neon", {9, 9, 9, 9, 9, 9, 9, 9, 9}, 30), 30);
    EXPECT_EQ(centreOf("neon", {10, 10, 10, 7, 7, 7, 0, 0, 0}, 30), 40);
    EXPECT_EQ(centreOf("neon", {0, 30, 40, 30, 0, 60, 60, 60, 50}, 0), 220);
    EXPECT_EQ(centreOf("neon", {0, 0, 200, 0, 0, 200, 0, 0, 200}, 0), 255);
}

// Checks all pairs of a centre and the grey around it, 3 x 3 pixels each: the centre becomes expected(centre,
// around).
template <class Expected> void eachPair(Am id, Expected expected)
{
    AmPicture picture(3 * 256, 3 * 256);
    for (int y = 0; y < 3 * 256; ++y)
        for (int x = 0; x < 3 * 256; ++x) {
            const int around = x / 3;
            const bool centre = x % 3 == 1 && y % 3 == 1;
            picture.view().at(x, y) = pixels::grey({0, 0, 0, 1}, u8(centre ? y / 3 : around));
        }
    AmPicture out = applied(id, picture);
    for (int c = 0; c < 256; ++c)
        for (int around = 0; around < 256; ++around)
            ASSERT_EQ(int(out.at(3 * around + 1, 3 * c + 1).g), expected(c, around)) << c << " in " << around;
}

TEST(AmNeighbours, PencilsDodgeByTheBrightestOfTheNine)
{
    eachPair("sketch-b", [](int c, int around) {
        const u32 most = u32(std::max(c, around));
        return most == 0 ? 255 : int(std::min(16777216 / most * u32(c) >> 16, 255u));
    });
    eachPair("color-sketch-b", [](int c, int around) {
        const u32 most = u32(std::max(c, around));
        return most == 0 ? 0 : int(16777216 / (most + 8) * u32(c) >> 16);
    });
}

TEST(AmNeighbours, ColourSketchLightensByTheExcessOfTheBrightest)
{
    eachPair("color-sketch", [](int c, int around) {
        const int excess = std::max(around - c, 0);
        int root = 1;
        while ((root + 1) * (root + 1) <= c + 1)
            ++root;
        const int weight = 3584 * (root + 1) / (excess + 2 + 2 * root) / 10;
        return c == 255 ? 255 : c + ((255 - c) * weight >> 8);
    });
    EXPECT_EQ(centreOf("color-sketch", {9, 9, 9, 9, 100, 9, 9, 9, 9}), 100 + (155 * 179 >> 8));
}

TEST(AmNeighbours, BordersAreKeptOrBlack)
{
    AmPicture source = noise(40, 30);
    const auto border = [](AmPicture& out, auto expected) {
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x)
                if (x == 0 || y == 0 || x == 39 || y == 29) {
                    EXPECT_EQ(out.at(x, y), expected(x, y)) << x << ", " << y;
                }
    };
    const auto kept = [&](int x, int y) { return source.at(x, y); };
    const auto black = [&](int x, int y) { return pixels::grey(source.at(x, y), 0); };
    for (const Am id : {"sharp", "blur2", "sketch", "sketch-b", "raindrop"}) {
        AmPicture out = applied(id, source);
        border(out, kept);
    }
    for (const Am id : {"neon", "color-sketch-b"}) {
        AmPicture out = applied(id, source);
        border(out, black);
        EXPECT_EQ(out.at(20, 20).a, source.at(20, 20).a);
    }
    AmPicture out = applied("color-sketch", source);
    border(out, [&](int x, int y) { return y == 0 || y == 29 ? kept(x, y) : black(x, y); });
}

// A picture in which every pixel is different.
AmPicture numbered(int width, int height)
{
    AmPicture picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.view().at(x, y) = {u8(x), u8(y), u8(x >> 8), u8(y >> 8)};
    return picture;
}

TEST(AmWarps, TunnelStretchesTheRimOfItsCircle)
{
    AmPicture source = numbered(300, 200);
    AmPicture out = applied("tunnel", source, [](AmEffectParams& b) { b.radius = 100; });
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 300; ++x)
            if ((x - 150) * (x - 150) + (y - 100) * (y - 100) <= 100 * 100) {
                ASSERT_EQ(out.at(x, y), source.at(x, y)) << x << ", " << y;
            }
    EXPECT_EQ(out.at(290, 100), source.at(250, 100));
    EXPECT_EQ(out.at(0, 0), source.at(150 - 83, 100 - 55)); // 180 away
    out = applied("tunnel", source, [](AmEffectParams& b) { b.posX = 100, b.posY = 0, b.radius = 0; });
    EXPECT_EQ(out.at(0, 0), source.at(298, 0));
    EXPECT_EQ(out.at(299, 199), source.at(299, 2)) << "2 from the centre, which lies beside the picture";
}

TEST(AmWarps, LensesKeepTheirCentreAndTheFarthestCorner)
{
    AmPicture source = numbered(400, 300); // the corners are exactly 250 away
    for (const i32 strength : {0, 1, 50, 100}) {
        AmPicture out = applied("enlarge", source, percent(strength));
        EXPECT_EQ(out.at(200, 150), source.at(200, 150));
        EXPECT_EQ(out.at(0, 0), source.at(0, 0)) << strength;
        out = applied("whirl", source, percent(strength));
        EXPECT_EQ(out.at(200, 150), source.at(200, 150));
        EXPECT_EQ(out.at(0, 0), source.at(0, 0)) << strength;
        out = applied("narrow", source, percent(strength));
        for (const int d : {-1, 0, 1})
            EXPECT_EQ(out.at(200 + d, 150), source.at(200 + d, 150));
    }
    AmPicture out = applied("enlarge", source, percent(100));
    EXPECT_EQ(out.at(300, 150), source.at(200 + 100 * 100 / 250, 150));
    out = applied("enlarge", source, percent(0)); // flattened by 250
    EXPECT_EQ(out.at(300, 150), source.at(200 + 100 * 350 / 500, 150));
    out = applied("narrow", source, percent(100)); // 0.4 ^ 0.5 * 0.5 / 0.4 = 0.79057
    EXPECT_EQ(out.at(300, 150), source.at(200 + 79, 150));
    EXPECT_EQ(out.at(100, 150), source.at(200 - 79, 150)) << "towards the centre";
    out = applied("whirl", source, percent(100)); // pi times 0.992 squared: (-2.9980, 0.1474) for 3 columns
    EXPECT_EQ(out.at(203, 150), source.at(200 - 2, 150));
    EXPECT_EQ(out.at(300, 150), source.at(200 + 42, 150 + 90)); // pi times 0.36: 64.8 degrees
}

TEST(AmWarps, MapsAreBuiltExactlyWhenTheirBitsAreSet)
{
    for (const auto& [id, bits] : {std::pair{1032, 44u}, {1033, 46u}, {1034, 46u}, {1035, 46u}}) {
        AmPicture source = noise(50, 40);
        AmBlock block(id);
        const auto run = [&] {
            AmPicture picture = source;
            EXPECT_EQ(test::apply(block, picture), 0);
            return picture.pixels();
        };
        const auto first = run();
        EXPECT_EQ(block->dirty, ~bits) << id;
        const auto spoil = [&] { std::memset(block->scratchC, 0, std::size_t(block->scratchCCapacity)); };
        spoil();
        block->percent = block->radius = 3;
        EXPECT_EQ(run(), flat(50, 40, source.at(0, 0)).pixels()) << "the map, zeros by now, was kept";
        block->percent = block->radius = 50;
        for (u32 bit = 1; bit != 0; bit <<= 1) {
            spoil();
            block->dirty = bit;
            EXPECT_EQ(run() == first, (bits & bit) != 0) << id << ", bit " << bit;
        }
        AmPicture larger = noise(60, 40);
        EXPECT_EQ(test::apply(block, larger), 0);
        EXPECT_EQ(run(), first) << "after another size";
    }
}

TEST(AmWarps, RowsMayLieFarApart)
{
    // More than 2^31 bytes from the first row to the last; only the pages that hold pixels become real.
    constexpr int kStride = (1 << 30) + 20;
    constexpr std::size_t kBytes = std::size_t(2) * kStride + 64;
    void* const memory =
        mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        GTEST_SKIP() << "no room for the rows";
    AmPicture near = noise(9, 3);
    const pixels::View far(static_cast<u8*>(memory), {9, 3}, kStride);
    for (int y = 0; y < 3; ++y)
        std::ranges::copy(near.row(y), far.row(y).begin());
    for (const Am id : {"shake", "ripple", "tunnel", "enlarge", "narrow", "whirl", "raindrop"}) {
        AmBlock block(id);
        AmPicture out(9, 3);
        const AmImageDesc desc = out.desc();
        pixels::threadRandom().seed(1);
        EXPECT_EQ(AmApplyEffectFrom(far, block.get(), &desc, nullptr), 0);
        EXPECT_EQ(out.pixels(), applied(id, near).pixels()) << id;
    }
    munmap(memory, kBytes);
}

TEST(AmWarps, ANodeRebuildsItsMapAfterEveryChange)
{
    CEffectImage image(50, 40, 0, 32, nullptr);
    AmPicture source = numbered(50, 40);
    for (int y = 0; y < 40; ++y)
        std::ranges::copy(source.row(y), image.view().row(y).begin());
    for (const Am id : {"tunnel", "enlarge", "narrow", "whirl"}) {
        CSimpleAmEffect node(id, 50, 40, nullptr);
        node.setInputImage(&image, 0);
        const auto result = [&](const char* name, int value) {
            node.setParamIntValue(name, value);
            EXPECT_TRUE(node.evaluate(nullptr));
            const pixels::View view = node.getOutputImage()->view();
            return std::vector<u8>(view.bytes(), view.bytes() + 50 * 40 * 4);
        };
        const char* const strength = id == Am("tunnel") ? "Radius" : "Percent";
        const auto weak = result(strength, 20);
        EXPECT_NE(result(strength, 90), weak) << id;
        EXPECT_NE(result("PositionX", 10), result("PositionX", 80)) << id;
        result("PositionX", 50);
        EXPECT_EQ(result(strength, 20), weak) << id;
    }
}

TEST(AmLocalCaches, OffsetsAndKernelsAreBuiltExactlyWhenTheirBitsAreSet)
{
    struct Case {
        Am id;
        u32 bits;
    };
    for (const Case c : {Case{"shake", 2}, {"ripple", 2}, {"tilt-shift", 33}}) {
        AmPicture picture(64, 48);
        AmBlock block(c.id);
        const auto isBuilt = [&](u32 dirty) {
            block->dirty = dirty;
            std::memset(block->scratchC, 1, 64);
            EXPECT_EQ(test::apply(block, picture), 0);
            EXPECT_EQ(block->dirty, dirty & ~c.bits);
            const std::vector<u8> ones(64, 1);
            return std::memcmp(block->scratchC, ones.data(), 64) != 0;
        };
        ASSERT_EQ(test::apply(block, picture), 0);
        EXPECT_EQ(block->dirty, ~c.bits);
        for (u32 bit = 1; bit != 0; bit <<= 1)
            EXPECT_EQ(isBuilt(bit), (c.bits & bit) != 0) << c.id << ", bit " << bit;
    }
}

TEST(AmLocalCaches, ANewSizeCalmsTheWaterAndAGrownPlaneHasNoFire)
{
    for (const auto& [id, bit] : {std::pair{Am("raindrop"), 32u}, {Am("frames"), 1u}}) {
        AmBlock block(id);
        AmPicture small(40, 30);
        AmPicture large(50, 40);
        AmPicture fresh(50, 40);
        for (int i = 0; i < 5; ++i)
            ASSERT_EQ(test::apply(block, small), 0);
        EXPECT_FALSE(block->dirty & bit);
        pixels::threadRandom().seed(7);
        large.fillWithNoise(1);
        fresh.fillWithNoise(1);
        ASSERT_EQ(test::apply(block, large), 0);
        EXPECT_EQ(large.pixels(),
            applied(
                id, fresh, [](AmEffectParams&) {}, 7)
                .pixels())
            << id;
    }
}

TEST(AmTiltShift, KeepsItsBandAndOnlyRaisesContrastThere)
{
    AmPicture source = noise(64, 100);
    AmPicture out = applied("tilt-shift", source);
    AmPicture curve = applied(64, source);
    for (int y = 0; y < 100; ++y)
        EXPECT_EQ(out.row(y) == curve.row(y), y > 50 - 18 && y < 50 + 18) << y; // a level takes 40 / 5 rows
    const auto whole = [](AmEffectParams& b) { b.top = 0, b.bottom = 100; };
    EXPECT_EQ(applied("tilt-shift", source, whole).pixels(), curve.pixels());
}

TEST(AmLocalMemory, WithoutItThePictureIsThePlainCopy)
{
    AmPicture source = noise(64, 48);
    for (const Am id :
        {"shake", "ripple", "tunnel", "enlarge", "narrow", "whirl", "raindrop", "frames", "tilt-shift"}) {
        AmBlock block(id);
        AmPicture out(64, 48);
        const AmImageDesc desc = out.desc();
        am::setAllocationGate([](std::size_t) { return false; });
        EXPECT_EQ(AmApplyEffectFrom(source.view(), block.get(), &desc, nullptr), -6) << id;
        am::setAllocationGate(nullptr);
        EXPECT_EQ(out.pixels(), source.pixels()) << id;
        EXPECT_EQ(AmApplyEffectFrom(source.view(), block.get(), &desc, nullptr), 0) << id;
    }
}

} // namespace
