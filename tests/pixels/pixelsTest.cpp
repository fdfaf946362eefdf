// Numbers, tables and row loops that every effect stands on.
#include "core/Random.h"
#include "pixels/Buffer.h"
#include "pixels/ByteTables.h"
#include "pixels/Padded.h"
#include "pixels/QuadraticCurve.h"
#include "pixels/Scratch.h"
#include "pixels/byteQuotient.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"
#include "pixels/transpose.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <numeric>
#include <thread>
#include <vector>

namespace {

using namespace pixels;
using test::Padded;

TEST(Numbers, TruncationSaturatesAndTakesNanToZero)
{
    EXPECT_EQ(truncated(-1.9), -1);
    EXPECT_EQ(truncated(2147483646.5), 2147483646);
    EXPECT_EQ(truncated(2147483648.0), 2147483647);
    EXPECT_EQ(truncated(1e300), 2147483647);
    EXPECT_EQ(truncated(-1e300), -2147483647 - 1);
    EXPECT_EQ(truncated(-2147483648.0), -2147483647 - 1);
    EXPECT_EQ(truncated(std::nan("")), 0);
    EXPECT_EQ(roundHalfUp(-0.5), 0);
    EXPECT_EQ(roundHalfUp(-1.5), -1) << "not symmetric about zero";
    EXPECT_EQ(roundHalfUp(2.5), 3);
    EXPECT_EQ(clamped(std::nan(""), 1.0, 2.0), 1.0);
}

TEST(Numbers, AThirdIsExactForEverySumOfThreeBytes)
{
    for (int sum = 0; sum <= 3 * 255; ++sum)
        ASSERT_EQ(third(sum), sum / 3);
}

TEST(Numbers, TheFourBlendsRoundDifferently)
{
    EXPECT_EQ(ceilingBlend(0, 200, 255), 200);
    EXPECT_EQ(ceilingBlend(255, 0, 255), 1);
    EXPECT_EQ(ceilingBlend(255, 255, 0), 255);
    EXPECT_EQ(shiftBlend(0, 200, 255), 199);
    EXPECT_EQ(divisionBlend(0, 200, 255), 200);
    EXPECT_EQ(divisionBlend(200, 200, 128), 199);
    EXPECT_EQ(floatBlend(200, 200, 128), 200);
    EXPECT_EQ(shiftBlend(255, 255, 0), 254);
}

TEST(Numbers, InversesOfThreeErrByLessThanTheyPromise)
{
    constexpr double kPromised = 1.0 / (1 << 21);
    for (int a = 1; a <= 263; ++a)
        for (int b = 1; b <= 263; ++b)
            for (const int c : {1, 3, 8, 97, 100, 255, 263}) {
                const Inverses found = inversesOf(float(a), float(b), float(c));
                ASSERT_LT(std::fabs(double(found.first) * a - 1), kPromised) << a << ", " << b << ", " << c;
                ASSERT_LT(std::fabs(double(found.second) * b - 1), kPromised) << a << ", " << b << ", " << c;
                ASSERT_LT(std::fabs(double(found.third) * c - 1), kPromised) << a << ", " << b << ", " << c;
            }
}

TEST(Random, RepeatsTheClassicSequence)
{
    RandomGenerator generator;
    EXPECT_EQ(generator.next(), 41);
    EXPECT_EQ(generator.next(), 18467);
    EXPECT_EQ(generator.next(), 6334);
    generator.seed(1);
    EXPECT_EQ(generator.next(), 41);
}

TEST(Random, ManyNumbersAtOnceAreTheSameNumbers)
{
    for (const int count : {0, 1, 15, 16, 17, 100, 1000}) {
        RandomGenerator oneByOne(77);
        RandomGenerator atOnce(77);
        RandomGenerator skipping(77);
        std::vector<u16> numbers(std::size_t(count) + 1, 0xFFFF);
        atOnce.fill(numbers.data(), count);
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(numbers[std::size_t(i)], oneByOne.next()) << i << " of " << count;
        EXPECT_EQ(numbers.back(), 0xFFFF);
        skipping.skip(u32(count));
        const int next = oneByOne.next();
        EXPECT_EQ(atOnce.next(), next);
        EXPECT_EQ(skipping.next(), next);
    }
}

TEST(QuadraticCurve, PassesThroughThePointsWhenItsPivotsAreOne)
{
    const auto curve = QuadraticCurve::through({{{0.0, 0.0}, {0.5, 0.5}, {1.0, 1.0}}});
    EXPECT_EQ(curve.a, 0.75);
    EXPECT_EQ(curve.b, 0.25);
    EXPECT_EQ(curve.c, 0.0);
    const auto falling = QuadraticCurve::through({{{0.0, 0.0}, {0.5, 0.5}, {0.0, 1.0}}});
    EXPECT_EQ(falling.a, 0.0);
    EXPECT_EQ(falling.b, -1.0);
    EXPECT_EQ(falling.c, 1.0);
}

TEST(Rows, MapHonoursStrideColumnsAndEqualRows)
{
    Padded picture(37, 5);
    const std::vector<u8> before = picture.memory;
    rows::map(picture.view(), picture.view(), 3, 36, [](Bgra p) {
        return Bgra{u8(255 - p.b), p.g, p.a, p.r};
    });
    for (std::size_t i = 0; i < before.size(); ++i) {
        const std::ptrdiff_t inRow = std::ptrdiff_t(i) % picture.stride();
        const bool mapped = inRow >= 3 * 4 && inRow < 36 * 4;
        const u8 expected[] = {
            u8(255 - before[i]), before[i], before[std::min(i + 1, before.size() - 1)], before[i - (i > 0)]};
        ASSERT_EQ(picture.memory[i], mapped ? expected[inRow % 4] : before[i]) << "byte " << i;
    }
}

TEST(Rows, EveryRowIsVisitedOnceHoweverManyThereAre)
{
    for (const Extent size : {Extent{1, 1}, {4096, 40}, {1, 5000}, {64 * 1024, 3}, {8, 0}}) {
        std::vector<int> visits(std::size_t(size.height), 0);
        rows::anyOrder(size, [&](int y) { ++visits[std::size_t(y)]; });
        EXPECT_EQ(std::ranges::count(visits, 1), size.height);
        const int sum = rows::fold(
            size, 0,
            [](int first, int last, int& value) {
                for (int y = first; y < last; ++y)
                    value += y;
            },
            [](int& left, int right) { left += right; });
        EXPECT_EQ(sum, size.height * (size.height - 1) / 2);
    }
}

TEST(Scratch, GrowsWithoutMovingAndIsUsedAgain)
{
    std::thread([] { // a thread without scratch memory as yet
        const auto fill = [](const Scratch<int>& values, int value) { std::ranges::fill(values, value); };
        const auto holds = [](const Scratch<int>& values, int value) {
            return std::ranges::count(values, value) == std::ptrdiff_t(values.size());
        };
        const void* first = nullptr;
        for (int round = 0; round < 2; ++round) {
            const Scratch<int> small(1000);
            fill(small, 1);
            const Scratch<int> large(1'000'000);
            fill(large, 2);
            {
                const Scratch<int> inner(3'000'000);
                fill(inner, 3);
            }
            const Scratch<int> last(2'000'000);
            fill(last, 4);
            EXPECT_TRUE(holds(small, 1) && holds(large, 2) && holds(last, 4));
            EXPECT_EQ(std::size_t(large.data()) % 64, 0u);
            if (round == 0)
                first = small.data();
            EXPECT_EQ(small.data(), first);
        }
        const Scratch<u8> none(0);
        EXPECT_EQ(none.begin(), none.end());
    })
        .join();
}

TEST(Scratch, WithoutMemoryThrowsAndLeavesWhatIsHeld)
{
    std::thread([] {
        const Scratch<u8> held(100);
        std::ranges::fill(held, u8(7));
        limitBuffers(1 << 20);
        EXPECT_THROW(Scratch<u8>(std::size_t(2) << 20), std::bad_alloc);
        limitBuffers(std::numeric_limits<std::size_t>::max());
        const Scratch<u8> after(std::size_t(2) << 20);
        std::ranges::fill(after, u8(9));
        EXPECT_EQ(std::ranges::count(held, u8(7)), 100);
    }).join();
}

TEST(ByteTables, VectorAndPlainLookUpsAgreeAndKeepAlpha)
{
    ByteTables tables;
    tables.b = tableOf([](int i) { return u8(i * 7 + 1); });
    tables.g = tableOf([](int i) { return u8(255 - i); });
    tables.r = tableOf([](int i) { return u8(i * i); });
    for (const int width : {1, 15, 16, 17, 256}) {
        Padded source(width, 3);
        Padded fast(width, 3);
        Padded plain(width, 3);
        mapTables(source.view(), fast.view(), tables, width / 3, width);
        limitVectors(VectorLevel::base);
        mapTables(source.view(), plain.view(), tables, width / 3, width);
        limitVectors(VectorLevel::avx512);
        EXPECT_EQ(fast.memory, plain.memory) << width;
        const Bgra p = source.view().at(width - 1, 2);
        EXPECT_EQ(plain.view().at(width - 1, 2), (Bgra{u8(p.b * 7 + 1), u8(255 - p.g), u8(p.r * p.r), p.a}));
    }
}

TEST(Transpose, RowsBecomeColumnsAndNothingElseIsWritten)
{
    constexpr u32 kUntouched = 0xEEEEEEEE;
    for (const auto level : {VectorLevel::base, VectorLevel::avx2, VectorLevel::avx512}) {
        limitVectors(level);
        for (const Extent size : {Extent{1, 1}, Extent{8, 8}, Extent{7, 16}, Extent{17, 9}, Extent{40, 3}}) {
            const std::size_t across = std::size_t(size.width) + 3;
            const std::size_t down = std::size_t(size.height) + 2;
            std::vector<u32> from(across * std::size_t(size.height));
            std::iota(from.begin(), from.end(), 0x01020304u);
            std::vector<u32> to(down * std::size_t(size.width), kUntouched);
            widest([=, source = reinterpret_cast<const u8*>(from.data()),
                       target = reinterpret_cast<u8*>(to.data())] {
                transpose(source, std::ptrdiff_t(across) * 4, target, std::ptrdiff_t(down) * 4, size.width,
                    size.height);
            });
            std::vector<u32> expected(to.size(), kUntouched);
            for (std::size_t y = 0; y < std::size_t(size.height); ++y)
                for (std::size_t x = 0; x < std::size_t(size.width); ++x)
                    expected[x * down + y] = from[y * across + x];
            EXPECT_EQ(to, expected) << size.width << " x " << size.height << ", level " << int(level);
        }
    }
    limitVectors(VectorLevel::avx512);
}

} // namespace
