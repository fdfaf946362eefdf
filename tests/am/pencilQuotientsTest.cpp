// The coloured pencils' quotients are exact for every inverse that can occur.
#include "effects/am/local/pencilQuotients.h"

#include "pixels/byteQuotient.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

using namespace KEXSDK::am;

// The range of both effects' divisors: a largest byte plus 8, or an excess over a byte plus twice n, where n
// is one more than the root of the byte plus one.
constexpr int kLeast = 4;
constexpr int kMost = 255 + 8;

struct Span {
    float least = std::numeric_limits<float>::infinity();
    float most = 0;

    void add(float value)
    {
        least = std::min(least, value);
        most = std::max(most, value);
    }
};

// By divisor, the least and the greatest inverse that any three divisors give: the inverse of a channel's
// divisor depends on those of the other two as well.
const std::array<Span, kMost + 1>& inverses()
{
    static const auto all = [] {
        std::array<Span, kMost + 1> spans;
        for (int a = kLeast; a <= kMost; ++a)
            for (int b = kLeast; b <= kMost; ++b)
                for (int c = kLeast; c <= kMost; ++c) {
                    const pixels::Inverses found = pixels::inversesOf(float(a), float(b), float(c));
                    spans[std::size_t(a)].add(found.first);
                    spans[std::size_t(b)].add(found.second);
                    spans[std::size_t(c)].add(found.third);
                }
        return spans;
    }();
    return all;
}

TEST(PencilQuotients, TheInversesOfUnequalDivisorsDiffer)
{
    EXPECT_LT(inverses()[100].least, inverses()[100].most) << "or the two tests below see too little";
}

// Products grow with the inverse, so both ends of a span stand for all between.
TEST(PencilQuotients, TheDodgeIsThatOfTheTable)
{
    for (int most = 0; most <= 255; ++most)
        for (int c = 0; c <= most; ++c) {
            const auto expected = ((1 << 24) / (most + 8)) * c >> 16;
            const Span& span = inverses()[std::size_t(most + 8)];
            ASSERT_EQ(dodged(c, most, span.least), expected) << c << " of " << most;
            ASSERT_EQ(dodged(c, most, span.most), expected) << c << " of " << most;
        }
}

TEST(PencilQuotients, TheLighteningIsTruncatedTwice)
{
    for (int c = 0; c <= 255; ++c) {
        const int n = int(std::sqrt(c + 1)) + 1;
        for (int excess = 0; excess <= 255 - c; ++excess) {
            const auto expected = u32(3584 * n / (excess + 2 * n) / 10);
            const Span& span = inverses()[std::size_t(excess + 2 * n)];
            ASSERT_EQ(lightening(2 * n, span.least), expected) << c << ", " << excess;
            ASSERT_EQ(lightening(2 * n, span.most), expected) << c << ", " << excess;
        }
    }
}

} // namespace
