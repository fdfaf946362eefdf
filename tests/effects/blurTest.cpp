// Facts about the blurs and the glow.
#include "effects/FrameEffect.h"
#include "pixels/BoxBlur.h"
#include "pixels/StackBlur.h"
#include "pixels/widest.h"

#include <random>
#include <ranges>

namespace {

using pixels::Bgra;
using pixels::VectorLevel;

constexpr const char* kBlur = "3DC7BBD0-E1EA-4c23-8947-51BF32442581";
constexpr const char* kGlow = "25E4478A-C617-4c60-B95A-F378D2923E17";
constexpr const char* kTriangleBlur = "4BADD6CB-B71B-44ed-8737-9F3DE9634C31";

class Blur : public test::FrameEffect { };

TEST_F(Blur, SizeZeroOnlyLimitsColoursToAlpha)
{
    for (const int size : {0, -1, -2147483647 - 1}) {
        open(kBlur, 20, 3).set("Size", size);
        EXPECT_EQ(show({200, 50, 100, 100}), (Bgra{100, 50, 100, 100})) << size;
        EXPECT_EQ(show({200, 50, 10, 0}), (Bgra{0, 0, 0, 0})) << size;
        fill({0, 0, 0, 255});
        frame().at(7, 1) = {255, 9, 1, 255};
        EXPECT_TRUE(showsItsInput()) << size;
    }
}

TEST_F(Blur, RadiusOneWeighsOneTwoOneAndRepeatsTheBorder)
{
    open(kBlur, 20, 3).set("Size", 10);
    fill({0, 0, 0, 255});
    for (int y = 0; y < 3; ++y)
        frame().at(10, y).g = frame().at(0, y).r = 255;
    const auto out = show();
    for (const auto& [x, expected] : {std::pair{8, 0}, {9, 63}, {10, 127}, {11, 63}, {12, 0}})
        EXPECT_EQ(out.at(x, 1), (Bgra{0, u8(expected), 0, 255})) << x;
    EXPECT_EQ(out.at(0, 1).r, 191);
    EXPECT_EQ(out.at(1, 1).r, 63);
}

TEST_F(Blur, EachPassLimitsToAlpha)
{
    open(kBlur, 20, 3).set("Size", 10);
    fill({0, 0, 0, 255});
    for (int y = 0; y < 3; ++y)
        frame().at(10, y) = {255, 255, 255, u8(y == 1 ? 255 : 40)};
    // The rows give 127, limited to 40 above and below; the column then is (40 + 2 * 127 + 40) / 4.
    EXPECT_EQ(show().at(10, 1), (Bgra{83, 83, 83, 255}));
    EXPECT_EQ(show().at(10, 0).a, 40);
}

TEST_F(Blur, FromRadius254OnItIsAPlainAverage)
{
    // Size 26 is radius 249, which limits to alpha; size 27 is radius 259, which averages alpha, too.
    open(kBlur, 1920, 4).set("Size", 26);
    EXPECT_EQ(show({200, 50, 10, 100}), (Bgra{100, 50, 10, 100}));
    open(kBlur, 1920, 4).set("Size", 27);
    EXPECT_EQ(show({200, 50, 10, 100}), (Bgra{200, 50, 10, 100}));

    open(kBlur, 4, 2).set("Size", 100'000);
    fill({0, 0, 0, 0});
    frame().at(1, 0) = {255, 80, 8, 7};
    for (const Bgra p : show().row(1))
        EXPECT_EQ(p, (Bgra{31, 10, 1, 0}));
}

TEST_F(Blur, WithoutMemoryOnlyTheAverageIsLost)
{
    const test::MemoryShortage shortage;
    open(kBlur, 1920, 4).set("Size", 27);
    frame().at(3, 3) = {255, 255, 255, 255};
    EXPECT_TRUE(showsItsInput());
    open(kBlur, 20, 3).set("Size", 10);
    fill({0, 0, 0, 255});
    frame().at(10, 1) = {255, 255, 255, 255};
    EXPECT_EQ(show().at(10, 1), (Bgra{63, 63, 63, 255}));
}

TEST_F(Blur, GlowScreensThePictureWithItsBlur)
{
    open(kGlow, 20, 3);
    EXPECT_EQ(show({255, 255, 255, 255}), (Bgra{255, 255, 255, 255}));
    EXPECT_EQ(show({0, 0, 0, 255}), (Bgra{0, 0, 0, 255}));
    EXPECT_EQ(show({100, 200, 0, 255}), (Bgra{161, 244, 0, 255}));
    EXPECT_EQ(show({0, 0, 0, 100}), (Bgra{0, 0, 0, 161})) << "alpha, too";
}

TEST_F(Blur, GlowTakesItsSizeFromBlur)
{
    host::Filter& glow = open(kGlow, 20, 3);
    glow.set("Size", 77);
    glow.set("Blur", 10);
    fill({0, 0, 0, 255});
    for (int y = 0; y < 3; ++y)
        frame().at(10, y) = {255, 255, 255, 255};
    EXPECT_EQ(show().at(9, 1), (Bgra{63, 63, 63, 255}));
    int size = 0;
    EXPECT_EQ(KEXSDK::getParamIntValue(glow.handle(), "Size", &size), 0u);
    EXPECT_EQ(size, 10);
}

TEST_F(Blur, TriangleBlurWithoutAGpuLeavesThePicture)
{
    openPlaces(kTriangleBlur, 33, 17);
    EXPECT_TRUE(showsItsInput());
}

// Blurs that add up every window anew, for comparison with the running sums.

using Pixels = std::vector<std::array<u32, 4>>;

Pixels stackBlurred(Pixels p, int w, int h, int radius)
{
    const auto [multiplier, shift] = pixels::stackDivisor(radius);
    const auto pass = [&](int count, int stride, int lines, int lineStride) {
        for (int line = 0; line < lines; ++line) {
            Pixels source;
            for (int i = 0; i < count; ++i)
                source.push_back(p[std::size_t(line * lineStride + i * stride)]);
            for (int i = 0; i < count; ++i) {
                for (std::size_t c = 0; c < 3; ++c) {
                    u32 sum = 0;
                    for (int k = -radius; k <= radius; ++k)
                        sum += u32(radius + 1 - std::abs(k))
                            * source[std::size_t(std::clamp(i + k, 0, count - 1))][c];
                    p[std::size_t(line * lineStride + i * stride)][c] =
                        std::min(sum * multiplier >> shift, source[std::size_t(i)][3]);
                }
            }
        }
    };
    pass(w, 1, h, w);
    pass(h, w, w, 1);
    return p;
}

Pixels averaged(const Pixels& p, int w, int h, int radius)
{
    Pixels result(p.size());
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            std::array<u32, 4> sum{};
            u32 count = 0;
            for (int v = std::max(0, y - radius); v <= std::min(h - 1, y + radius); ++v) {
                for (int u = std::max(0, x - radius); u <= std::min(w - 1, x + radius); ++u, ++count) {
                    for (std::size_t c = 0; c < 4; ++c)
                        sum[c] += p[std::size_t(v * w + u)][c];
                }
            }
            for (std::size_t c = 0; c < 4; ++c)
                result[std::size_t(y * w + x)][c] = sum[c] / count;
        }
    }
    return result;
}

class RunningSums : public testing::TestWithParam<pixels::Extent> {
protected:
    // Noise, or white, which gives the largest sums.
    static Pixels picture(pixels::Extent size, bool white)
    {
        std::mt19937 random(9);
        Pixels p(std::size_t(size.width) * size.height);
        for (auto& bytes : p)
            std::ranges::generate(bytes, [&] { return white ? 255 : u32(random() & 255); });
        return p;
    }
    template <class Apply> static void expectBlur(const Pixels& before, const Pixels& after, Apply apply)
    {
        for (const auto level : {VectorLevel::base, VectorLevel::avx2, VectorLevel::avx512}) {
            pixels::limitVectors(level);
            test::GuardedFrame frame(GetParam().width, GetParam().height);
            std::ranges::copy(std::views::join(before), frame.pixels());
            apply(frame.view());
            EXPECT_TRUE(std::ranges::equal(frame.bytes(), std::views::join(after))) << int(level);
            EXPECT_TRUE(frame.guardsIntact());
        }
    }
};

TEST_P(RunningSums, EqualTheWeightedSums)
{
    const auto [w, h] = GetParam();
    for (const int radius : {0, 1, 2, 5, 16, 60, 253, 254}) {
        SCOPED_TRACE(radius);
        const Pixels before = picture({w, h}, radius == 253);
        expectBlur(before, stackBlurred(before, w, h, radius),
            [=](pixels::View frame) { pixels::stackBlur(frame, frame, radius); });
    }
}

TEST_P(RunningSums, EqualThePlainAverages)
{
    const auto [w, h] = GetParam();
    pixels::BoxBlur box({w, h});
    for (const int radius : {0, 1, 3, 20, 33, 254, 4096}) {
        SCOPED_TRACE(radius);
        const Pixels before = picture({w, h}, radius == 33);
        expectBlur(before, averaged(before, w, h, radius),
            [&](pixels::View frame) { box.apply(frame, frame, radius); });
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, RunningSums,
    testing::ValuesIn(
        std::vector<pixels::Extent>{{1, 1}, {1, 9}, {9, 1}, {7, 5}, {33, 17}, {65, 34}, {20, 300}}),
    [](const auto& sized) {
        return std::to_string(sized.param.width) + "x" + std::to_string(sized.param.height);
    });

TEST(StackBlur, DivisorsAreThePublishedOnes)
{
    constexpr u32 kMultipliers[] = {512, 512, 456, 512, 328, 456, 335, 512, 405};
    constexpr u32 kShifts[] = {9, 11, 12, 13, 13, 14, 14, 15, 15};
    for (int radius = 0; radius < 9; ++radius) {
        EXPECT_EQ(pixels::stackDivisor(radius).multiplier, kMultipliers[radius]);
        EXPECT_EQ(pixels::stackDivisor(radius).shift, kShifts[radius]);
    }
    EXPECT_EQ(pixels::stackDivisor(180).multiplier, 257u);
    EXPECT_EQ(pixels::stackDivisor(181).multiplier, 507u);
    EXPECT_EQ(pixels::stackDivisor(254).multiplier, 259u);
}

// Every quotient of the box average is one float estimate and one correction; this walks its edges at the
// largest sums.
TEST(BoxBlur, WhiteStaysWhiteAndOneLessIsSeen)
{
    constexpr int kSide = 4096;
    std::vector<u8> bytes(std::size_t(kSide) * kSide * 4, 255);
    const pixels::View picture(bytes.data(), {kSide, kSide});
    pixels::BoxBlur box({kSide, kSide});
    ASSERT_TRUE(box.ready());
    box.apply(picture, picture, kSide);
    EXPECT_TRUE(std::ranges::all_of(bytes, [](u8 b) { return b == 255; }));
    picture.at(0, 0).g = 254;
    box.apply(picture, picture, kSide);
    EXPECT_EQ(picture.at(kSide - 1, 0), (Bgra{255, 254, 255, 255}));
}

} // namespace
