// Mixing, masks and soft edges by themselves: exact bytes, whatever the processor and the number of threads.
#include "host/mixing.h"

#include "pixels/widest.h"

#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace {

using host::MaskPlane;
using host::MixShares;
using pixels::Bgra;
using pixels::Extent;

struct Picture {
    explicit Picture(Extent extent) : size(extent), data(std::size_t(extent.width) * extent.height) { }
    static Picture noise(Extent extent, unsigned seed)
    {
        Picture picture(extent);
        std::mt19937 random(seed);
        for (Bgra& p : picture.data)
            p = {u8(random()), u8(random()), u8(random()), u8(random())};
        return picture;
    }
    pixels::View view() { return {reinterpret_cast<u8*>(data.data()), size}; }
    Bgra at(int x, int y) const { return data[std::size_t(y) * size.width + x]; }

    Extent size;
    std::vector<Bgra> data;
};

std::vector<u8> valuesOf(const MaskPlane& mask)
{
    return {mask.row(0), mask.row(0) + std::size_t(mask.extent().width) * mask.extent().height};
}

// floor(from + (effect - from) mix mask / 255 + 1/2) in whole numbers.
int expectedByte(int from, int effect, float mix, int mask)
{
    int exponent = 0;
    const auto mantissa = std::int64_t(std::ldexp(std::frexp(mix, &exponent), 24));
    const int shift = 24 - exponent;
    if (shift > 40)
        return from; // adds far less than a half
    const std::int64_t one = std::int64_t{510} << shift;
    const std::int64_t sum = 2 * (effect - from) * mask * mantissa + one / 2 + one * from;
    return int(sum / one);
}

// Ends, halves, and the neighbours of shares at which a difference changes its rounding.
std::vector<float> tellingMixes()
{
    std::vector<float> mixes{0, 1, 0.5f, 0.25f, 1 / 256.0f, 1e-30f, std::nextafter(0.0f, 1.0f)};
    for (const int d : {1, 2, 3, 85, 127, 128, 254, 255}) {
        for (const int k : {0, d / 3, d / 2, d - 1}) {
            const float edge = float(2 * k + 1) / float(2 * d);
            for (const float mix : {edge, std::nextafter(edge, 0.0f), std::nextafter(edge, 1.0f)})
                mixes.push_back(mix);
        }
    }
    std::mt19937 random(5);
    for (int i = 0; i < 100; ++i)
        mixes.push_back(float(random() >> 8) / float(1 << 24));
    return mixes;
}

TEST(Mixing, IsExactForEveryPairOfBytes)
{
    Picture from({256, 256});
    Picture effect({256, 256});
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            from.view().at(x, y) = {u8(x), u8(y), u8(x ^ 255), u8(x)};
            effect.view().at(x, y) = {u8(y), u8(x), u8(y), u8(y ^ 255)};
        }
    }
    Picture to({256, 256});
    for (const float mix : tellingMixes()) {
        host::mixPictures(from.view(), effect.view(), mix, to.view());
        int wrong = 0;
        for (std::size_t i = 0; i < to.data.size(); ++i) {
            const auto is = [&](u8 Bgra::*c) {
                return to.data[i].*c == expectedByte(from.data[i].*c, effect.data[i].*c, mix, 255);
            };
            wrong += !is(&Bgra::b) || !is(&Bgra::g) || !is(&Bgra::r) || !is(&Bgra::a);
        }
        EXPECT_EQ(wrong, 0) << mix;
        if (mix == 0 || mix == 1) {
            EXPECT_EQ(to.data, mix == 0 ? from.data : effect.data);
        }
    }
}

// One column for every difference of two bytes, one row for every value of the mask.
TEST(Mixing, IsExactForEveryDifferenceAndEveryMask)
{
    constexpr Extent kSize{511, 256};
    Picture from(kSize);
    Picture effect(kSize);
    Picture shown(kSize);
    for (int y = 0; y < kSize.height; ++y) {
        for (int x = 0; x < kSize.width; ++x) {
            const int difference = x - 255;
            const u8 low = u8((y * 7 + x) % (256 - std::abs(difference)));
            const u8 high = u8(low + std::abs(difference));
            from.view().at(x, y) = pixels::grey({}, difference < 0 ? high : low);
            effect.view().at(x, y) = pixels::grey({}, difference < 0 ? low : high);
            shown.view().at(x, y) = pixels::grey({0, 0, 0, 255}, u8(y));
        }
    }
    MaskPlane mask(kSize, false, 0);
    mask.take(shown.view());
    Picture to(kSize);
    for (const float mix : tellingMixes()) {
        host::mixPictures(from.view(), effect.view(), MixShares(mix), mask, to.view());
        int wrong = 0;
        for (int y = 0; y < kSize.height; ++y) {
            for (int x = 0; x < kSize.width; ++x)
                wrong += to.at(x, y).g != expectedByte(from.at(x, y).g, effect.at(x, y).g, mix, y);
        }
        EXPECT_EQ(wrong, 0) << mix;
    }
}

TEST(Masks, AreLumaTimesAlpha)
{
    Picture picture({9, 1});
    picture.data = {{255, 255, 255, 255}, {0, 0, 0, 255}, {255, 255, 255, 0}, {255, 255, 255, 127},
        {0, 0, 255, 255}, {0, 255, 0, 255}, {255, 0, 0, 255}, {200, 200, 200, 100}, {1, 1, 1, 254}};
    MaskPlane mask(picture.size, false, 0);
    mask.take(picture.view());
    EXPECT_EQ(valuesOf(mask), (std::vector<u8>{255, 0, 0, 127, 76, 150, 29, 78, 1}));
    MaskPlane inverted(picture.size, true, 0);
    inverted.take(picture.view());
    EXPECT_EQ(valuesOf(inverted), (std::vector<u8>{0, 255, 255, 128, 179, 105, 226, 177, 254}));
}

std::vector<u8> feathered(std::vector<u8> plane, Extent size, double reach)
{
    host::Feather(size, reach).apply(plane.data());
    return plane;
}

TEST(Feathers, LeaveEvenPlanesAlone)
{
    for (const Extent size : {Extent{1, 1}, {1, 9}, {65, 2}, {130, 67}}) {
        for (const int value : {0, 1, 127, 254, 255}) {
            const std::vector<u8> plane(std::size_t(size.width) * size.height, u8(value));
            for (const double reach : {0.0, 0.4, 1.0, 2.0, 7.3, 200.0, 1e300})
                ASSERT_EQ(feathered(plane, size, reach), plane) << size.width << ' ' << value << ' ' << reach;
        }
    }
}

TEST(Feathers, TurnAHardEdgeIntoASlopeThatReachesAsFarAsAsked)
{
    constexpr int kLength = 200;
    for (const Extent size : {Extent{kLength, 3}, {3, kLength}}) {
        const bool across = size.width == kLength;
        std::vector<u8> plane(3 * kLength);
        for (int i = 0; i < 3 * kLength; ++i)
            plane[std::size_t(i)] = (across ? i % kLength : i / 3) < kLength / 2 ? 0 : 255;
        EXPECT_EQ(feathered(plane, size, 0.4), plane);
        for (const int reach : {1, 2, 3, 4, 10, 30}) {
            const auto soft = feathered(plane, size, reach);
            const auto at = [&](int i) { return int(soft[std::size_t(across ? kLength + i : i * 3 + 1)]); };
            EXPECT_EQ(at(kLength / 2 - reach - 1), 0) << reach;
            EXPECT_EQ(at(kLength / 2 + reach), 255) << reach;
            if (reach <= 10) { // its ends are faint
                EXPECT_GT(at(kLength / 2 - (reach + 2) / 3), 0) << reach;
                EXPECT_LT(at(kLength / 2 + (reach + 2) / 3 - 1), 255) << reach;
            }
            for (int i = 1; i < kLength; ++i) {
                ASSERT_GE(at(i), at(i - 1)) << reach;
                ASSERT_NEAR(at(i), 255 - at(kLength - 1 - i), 1) << "the same to both sides";
            }
        }
    }
}

// A mean of three boxes along each axis in floating point, with the border's values beyond the border.
std::vector<double> boxes(std::vector<double> plane, Extent size, int radius, bool across)
{
    const std::vector<double> from = plane;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            double sum = 0;
            for (int i = -radius; i <= radius; ++i) {
                const int fx = std::clamp(across ? x + i : x, 0, size.width - 1);
                const int fy = std::clamp(across ? y : y + i, 0, size.height - 1);
                sum += from[std::size_t(fy) * size.width + fx];
            }
            plane[std::size_t(y) * size.width + x] = sum / (2 * radius + 1);
        }
    }
    return plane;
}

TEST(Feathers, AreThreeBoxes)
{
    constexpr Extent kSize{75, 41};
    std::mt19937 random(3);
    std::vector<u8> plane(75 * 41);
    std::ranges::generate(plane, [&] { return u8(random() % 3 * 127); });
    for (const auto& radii : {std::array{1, 0, 0}, {2, 2, 1}, {4, 4, 4}, {60, 60, 60}}) {
        std::vector<double> expected(plane.begin(), plane.end());
        for (const int radius : radii) {
            expected = boxes(expected, kSize, radius, true);
            expected = boxes(expected, kSize, radius, false);
        }
        const auto soft = feathered(plane, kSize, radii[0] + radii[1] + radii[2]);
        for (std::size_t i = 0; i < soft.size(); ++i)
            ASSERT_NEAR(soft[i], expected[i], 0.53) << i << ", radius " << radii[0];
    }
}

TEST(Mixing, NeitherThreadsNorVectorsShowInTheBytes)
{
    constexpr Extent kSize{333, 301}; // several tasks, and no multiple of any vector
    Picture from = Picture::noise(kSize, 1);
    Picture effect = Picture::noise(kSize, 2);
    Picture shown = Picture::noise(kSize, 3);
    const auto run = [&](std::size_t threads, pixels::VectorLevel vectors) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        pixels::limitVectors(vectors);
        MaskPlane mask(kSize, true, 11);
        mask.take(shown.view());
        Picture masked(kSize);
        host::mixPictures(from.view(), effect.view(), MixShares(0.7f), mask, masked.view());
        Picture plain(kSize);
        host::mixPictures(from.view(), effect.view(), 0.3f, plain.view());
        pixels::limitVectors(pixels::VectorLevel::avx512);
        masked.data.insert(masked.data.end(), plain.data.begin(), plain.data.end());
        return masked.data;
    };
    const auto bytes = run(1, pixels::VectorLevel::base);
    EXPECT_TRUE(bytes == run(1, pixels::VectorLevel::avx2));
    EXPECT_TRUE(bytes == run(1, pixels::VectorLevel::avx512));
    EXPECT_TRUE(bytes == run(4, pixels::VectorLevel::avx512));
}

} // namespace
