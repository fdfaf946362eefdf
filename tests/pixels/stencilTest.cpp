// Stencils against plain loops.
#include "pixels/stencil.h"

#include "pixels/Padded.h"

#include <algorithm>
#include <functional>

namespace {

using namespace pixels;
using test::onEveryVectorLevel;
using test::Padded;

constexpr Extent kSizes[] = {{1, 1}, {1, 5}, {5, 1}, {2, 2}, {2, 6}, {6, 2}, {3, 3}, {70, 3}, {259, 140}};
constexpr Border kBorders[] = {
    Border::untouched, Border::kept, Border::black, Border::blackSides, Border::white};

// A weighted mean in which every neighbour counts differently.
constexpr int weighted(Neighbours n)
{
    return (n.belowLeft + 2 * n.below + 3 * n.belowRight + 4 * n.left + 5 * n.centre + 6 * n.right
               + 7 * n.aboveLeft + 8 * n.above + 9 * n.aboveRight)
        / 45;
}

// That mean as a plain loop; at(dx, dy) is the byte that lies so far away.
int weightedAround(const std::function<int(int, int)>& at)
{
    int sum = 0;
    int weight = 0;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            sum += ++weight * at(dx, dy);
    return sum / 45;
}

Bgra borderPixel(Border border, bool endRow, Bgra src, Bgra before)
{
    switch (border) {
    case Border::untouched:
        return before;
    case Border::kept:
        return src;
    case Border::black:
        return {0, 0, 0, src.a};
    case Border::blackSides:
        return endRow ? src : Bgra{0, 0, 0, src.a};
    case Border::white:
        return {255, 255, 255, src.a};
    }
    return {};
}

// Checks run(src, dst, border) on pictures of every size and with every border; inner(src, x, y) is what must
// come out where all neighbours exist.
void expectStencil(const std::function<void(ConstView, View, Border)>& run,
    const std::function<Bgra(ConstView, int x, int y)>& inner)
{
    for (const Extent size : kSizes)
        for (const Border border : kBorders) {
            SCOPED_TRACE(
                testing::Message() << size.width << " x " << size.height << ", border " << int(border));
            Padded src(size.width, size.height);
            Padded expected(size.width, size.height);
            for (u8& byte : expected.memory)
                byte ^= 0x5A;
            Padded dst = expected;
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) {
                    const bool endRow = y == 0 || y == size.height - 1;
                    const bool atBorder = endRow || x == 0 || x == size.width - 1;
                    Bgra& pixel = expected.view().at(x, y);
                    pixel = atBorder ? borderPixel(border, endRow, src.view().at(x, y), pixel)
                                     : inner(src.view(), x, y);
                }
            run(src.view(), dst.view(), border);
            EXPECT_EQ(dst.memory, expected.memory);
        }
}

TEST(Stencil, EveryColourByteSeesItsOwnChannelAndAlphaStays)
{
    onEveryVectorLevel([] {
        expectStencil([](ConstView src, View dst, Border border) { stencil(src, dst, border, weighted); },
            [](ConstView src, int x, int y) -> Bgra {
                const auto channel = [&](u8 Bgra::*c) {
                    return u8(weightedAround([&](int dx, int dy) { return src.at(x + dx, y + dy).*c; }));
                };
                return {channel(&Bgra::b), channel(&Bgra::g), channel(&Bgra::r), src.at(x, y).a};
            });
    });
}

u8 madeOf(Bgra p) { return u8(3 * p.g + p.b); }

TEST(Stencil, RowsThatAreMadeSeeTheirNeighbours)
{
    onEveryVectorLevel([] {
        expectStencil(
            [](ConstView src, View dst, Border border) {
                const auto make = [&](int y, u8* to) { std::ranges::transform(src.row(y), to, madeOf); };
                stencilRows(src, dst, border, make, [&](int y, RowsAround around) {
                    const int width = src.width();
                    std::vector<u8> made(std::size_t(width), 0);
                    widest([=, to = made.data()] { mapNeighbours<1>(around, to, width, weighted); });
                    for (int x = 1; x < width - 1; ++x)
                        dst.at(x, y) = grey(src.at(x, y), made[std::size_t(x)]);
                });
            },
            [](ConstView src, int x, int y) {
                return grey(src.at(x, y),
                    u8(weightedAround([&](int dx, int dy) { return madeOf(src.at(x + dx, y + dy)); })));
            });
    });
}

TEST(Stencil, EveryRowIsMadeOnce)
{
    std::vector<int> made;
    std::vector<int> drawn;
    eachMadeRow(
        0, 5, 3,
        [&](int y, u8* to) {
            made.push_back(y);
            std::fill_n(to, 3, u8(10 + y));
        },
        [&](int y, RowsAround around) {
            drawn.push_back(y);
            EXPECT_EQ(around.below[0], 9 + y);
            EXPECT_EQ(around.row[1], 10 + y);
            EXPECT_EQ(around.above[2], 11 + y);
        });
    EXPECT_EQ(made, (std::vector<int>{-1, 0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(drawn, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(Stencil, TheLargestOfNineAndTheSharpenedRow)
{
    onEveryVectorLevel([] {
        for (const int width : {3, 4, 33, 130}) {
            Padded src(width, 3);
            for (std::size_t i = 0; i < src.memory.size(); ++i)
                src.memory[i] = u8(i * i / 7 * 31); // no row rises steadily
            const auto byte = [&](int i, int y) {
                return int(src.memory[std::size_t(y * src.stride() + i)]);
            };
            const u8* const bytes = src.memory.data();
            const RowsAround around{bytes, bytes + src.stride(), bytes + 2 * src.stride()};
            for (const int step : {1, 4}) {
                const int count = step * width;
                std::vector<u8> largest(std::size_t(count), 77);
                largestOfNine(around, step, largest.data(), count);
                for (int i = 0; i < count; ++i) {
                    int most = 0;
                    for (int y = 0; y < 3; ++y)
                        for (const int at : {i - step, i, i + step})
                            most = std::max(most, at >= 0 && at < count ? byte(at, y) : 0);
                    const bool inside = i >= step && i < count - step;
                    ASSERT_EQ(largest[std::size_t(i)], inside ? most : 77) << i << " of " << count;
                }
            }
            std::vector<Bgra> sharp(std::size_t(width), Bgra{7, 7, 7, 7});
            sharpenRow(around, sharp.data(), width);
            for (int i = 0; i < 4 * width; ++i) {
                int sum = 10 * byte(i, 1);
                for (int y = 0; y < 3; ++y)
                    for (const int at : {i - 4, i, i + 4})
                        sum -= at >= 0 && at < 4 * width ? byte(at, y) : 0;
                const int inner = i % 4 == 3 ? byte(i, 1) : std::clamp(sum, 0, 255);
                ASSERT_EQ(
                    reinterpret_cast<const u8*>(sharp.data())[i], i >= 4 && i < 4 * width - 4 ? inner : 7)
                    << i << " of " << 4 * width;
            }
        }
    });
}

} // namespace
