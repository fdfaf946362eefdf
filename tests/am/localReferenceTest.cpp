// Effects whose rows, sweeps or sums are computed in another order than they are defined in, against the
// defined one.
#include "am/AmFixture.h"
#include "effects/am/data/firePalette.h"
#include "effects/am/library/amTables.h"

#include <cstring>

namespace {

using namespace KEXSDK;
using test::Am;
using test::AmBlock;
using test::AmPicture;
using test::Bgra;

constexpr Bgra kOpaqueBlack{0, 0, 0, 255};

AmPicture noise(int width, int height)
{
    AmPicture picture(width, height, 12);
    picture.fillWithNoise(u32(width * 31 + height));
    return picture;
}

// Draws some frames of an effect and compares each with what expect(block, source, expected, random) makes of
// its source. The generator has to stand as the effect left it: expect draws as many numbers from `random`.
template <class Set, class Expect>
void eachFrame(Am id, int frames, int width, int height, Set set, Expect expect)
{
    SCOPED_TRACE(testing::Message() << id << " at " << width << " x " << height);
    AmBlock block(id);
    set(*block.get());
    pixels::threadRandom().seed(41);
    for (int i = 0; i < frames; ++i) {
        AmPicture source = noise(width, height);
        AmPicture result = source;
        pixels::RandomGenerator before = pixels::threadRandom();
        ASSERT_EQ(test::apply(block, result), 0);
        pixels::RandomGenerator after = pixels::threadRandom();
        AmPicture expected = source;
        expect(*block.get(), source, expected, before);
        ASSERT_EQ(result.pixels(), expected.pixels()) << "frame " << i;
        EXPECT_EQ(after.next(), before.next()) << "as many numbers were drawn";
    }
}

std::vector<i16> tableOf(const AmEffectParams& block)
{
    std::vector<i16> table(1024);
    std::memcpy(table.data(), block.scratchC, 2048);
    return table;
}

void draw(pixels::RandomGenerator& random, int count)
{
    for (int i = 0; i < count; ++i)
        random.next();
}

bool isInside(int x, int y, int width, int height) { return x >= 0 && x < width && y >= 0 && y < height; }

TEST(AmLocalReference, ShakeWalksOnFromPixelToPixel)
{
    for (const auto& [w, h] : {std::pair{1, 9}, {70, 33}, {301, 40}}) {
        bool first = true;
        eachFrame("shake", 3, w, h, test::percent(100),
            [&, w = w, h = h](auto& block, AmPicture& source, AmPicture& expected, auto& random) {
                const auto walk = tableOf(block);
                if (first)
                    draw(random, 1024);
                int s = first ? walk[1023] : 0;
                first = false;
                const int base = random.next();
                for (int y = 0; y < h; ++y) {
                    const int start = walk[std::size_t(base + s + y) & 0x3FF];
                    for (int x = 0; x < w; ++x) {
                        const int sx = start + x;
                        const int sy = s = walk[std::size_t(sx) & 0x3FF] + y;
                        expected.view().at(x, y) = isInside(sx, sy, w, h) ? source.at(sx, sy) : kOpaqueBlack;
                    }
                }
            });
    }
}

TEST(AmLocalReference, RippleWalksOnFromPixelToPixel)
{
    for (const auto& [w, h] : {std::pair{1, 9}, {70, 33}, {301, 40}}) {
        bool first = true;
        eachFrame("ripple", 3, w, h, test::percent(80),
            [&, w = w, h = h](auto& block, AmPicture& source, AmPicture& expected, auto& random) {
                const auto ripple = tableOf(block);
                if (first)
                    draw(random, 1024);
                first = false;
                const int base = random.next() & 0x3FF;
                int s = 0;
                for (int y = 0; y < h; ++y) {
                    const int dx = ripple[std::size_t(base + s + y) & 0x3FF];
                    for (int x = 0; x < w; ++x) {
                        s = std::clamp(ripple[std::size_t(x) & 0x3FF] + y, 0, h - 1);
                        expected.view().at(x, y) = source.at(std::clamp(dx + x, 0, w - 1), s);
                    }
                }
            });
    }
}

TEST(AmLocalReference, JitterLeadsFromPixelToPixelInsideItsMargin)
{
    for (const auto& [w, h] : {std::pair{5, 5}, {41, 30}, {400, 300}})
        eachFrame(1025, 2, w, h, test::percent(50),
            [w = w, h = h](auto&, AmPicture& source, AmPicture& expected, auto& random) {
                constexpr int k = 5;
                int table[64];
                for (int& entry : table)
                    entry = random.next() % (2 * k) - k;
                int j = random.next() & 63;
                for (int y = k; y < h - k; ++y)
                    for (int x = k; x < w - k; ++x) {
                        const int r = y + table[(j + y + x) & 63];
                        j = table[(r + x) & 63];
                        expected.view().at(x, y) = source.at(x + j, r);
                    }
            });
}

TEST(AmLocalReference, WaterTakesTurnsWithItsTwoPlanes)
{
    for (const auto& [w, h] : {std::pair{1, 4}, {2, 2}, {90, 64}}) {
        std::vector<i32> planes[2] = {
            std::vector<i32>(std::size_t(w * h)), std::vector<i32>(std::size_t(w * h))};
        int current = 0;
        bool first = true;
        const auto set = [](AmEffectParams& b) { b.percent = 60, b.radius = 100; };
        eachFrame("raindrop", 6, w, h, set,
            [&, w = w, h = h](auto& block, AmPicture& source, AmPicture& expected, auto& random) {
                const auto at = [w = w](std::vector<i32>& plane, int x, int y) -> i32& {
                    return plane[std::size_t(y * w + x)];
                };
                int index = random.next() & 0x1FF;
                const auto cast = [&](int radiusRange, int depthRange) {
                    const int r = am::amRandomBytes()[std::size_t(index)];
                    index += 4;
                    const int radius = (r * radiusRange) >> 8;
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w; ++x) {
                            const int dx = x - ((r * w) >> 7);
                            const int dy = y - ((r * h) >> 7);
                            if (dx * dx + dy * dy < radius * radius)
                                at(planes[current], x, y) = -((r * depthRange) >> 8);
                        }
                };
                const int longer = std::max(w, h);
                for (int i = 0; first && i < 20; ++i)
                    cast(longer >> 3, 1000);
                first = false;
                for (int i = 0; i < 2; ++i)
                    cast(longer >> 5, 140);
                std::vector<i32>& now = planes[current];
                std::vector<i32>& next = planes[current ^ 1];
                for (int y = 1; y < h - 1; ++y)
                    for (int x = 1; x < w - 1; ++x) {
                        int n = at(now, x - 1, y) + at(now, x + 1, y) + at(now, x, y - 1) + at(now, x, y + 1);
                        n = (n >> 1) - at(next, x, y);
                        at(next, x, y) = n - (n >> 5);
                    }
                for (int y = 1; y < h - 1; ++y)
                    for (int x = 1; x < w - 1; ++x) {
                        const int sx = x + at(next, x - 1, y) - at(next, x + 1, y);
                        const int sy = y + at(next, x, y - 1) - at(next, x, y + 1);
                        if (isInside(sx, sy, w, h))
                            expected.view().at(x, y) = source.at(sx, sy);
                    }
                current ^= 1;
                EXPECT_EQ(block.toggle, current);
            });
    }
}

Bgra burnt(Bgra p, int intensity, int percent)
{
    const int packed = am::kFirePalette[std::size_t(intensity)];
    const int a = std::min(packed * (45 * percent / 200) * 20 / 64453, 255);
    const auto over = [=](int c, int colour) { return u8((c * (256 - a) + colour * a) >> 8); };
    return {
        over(p.b, (packed & 31) * 8), over(p.g, (packed >> 3) & 252), over(p.r, (packed >> 8) & 248), p.a};
}

TEST(AmLocalReference, FireSweepsThreeTimesFromRowToRow)
{
    struct Case {
        int w, h, direction;
    };
    for (const Case c :
        {Case{1, 7, 0}, {5, 1, 1}, {6, 2, 1}, {6, 3, 0}, {9, 5, 1}, {48, 40, 0}, {48, 40, 1}}) {
        const int n = c.w * c.h;
        std::vector<u32> plane(std::size_t(n), 0);
        const auto cell = [&](int k) -> u32& { return plane[std::size_t(k)]; };
        const auto set = [=](AmEffectParams& b) { b.percent = 90, b.direction = c.direction; };
        eachFrame("frames", 8, c.w, c.h, set,
            [&](auto& block, AmPicture& source, AmPicture& expected, auto& random) {
                int s = 0;
                for (int x = 0; x < c.w; ++x) {
                    int index = random.next() & 0x1FF;
                    for (int y = 0; y < std::min(c.h, 5); ++y, s = (s + 1) % 3) {
                        if (s != 0)
                            continue;
                        const u32 b = am::amRandomBytes()[std::size_t(index++)];
                        for (int up = 0; up < 3 && up <= y; ++up)
                            cell((y - up) * c.w + x) = b > 128 ? 2 * b : 0;
                    }
                }
                for (int sweep = 0; sweep < 3; ++sweep) {
                    for (int k = 2 * c.w; k < n; ++k)
                        cell(k) = (cell(k - 2 * c.w) + cell(k - c.w - 1) + cell(k - c.w + 1) + cell(k)) >> 2;
                    for (int x = 0; x < c.w && c.h > 1; ++x)
                        cell(c.w + x) = cell(x);
                }
                ASSERT_EQ(std::memcmp(block.scratchC, plane.data(), plane.size() * 4), 0);
                for (int y = 1; y < c.h; ++y)
                    for (int x = 0; x < c.w; ++x) {
                        const int k = c.direction == 1 ? y * c.w - 1 - x : (c.h - y) * c.w + x;
                        const int i = int(cell(k) & 0xFF);
                        expected.view().at(x, y) = burnt(source.at(x, y), i, 90);
                    }
            });
    }
}

// The tilt shift as plain means, each over the whole kernel of its level as that stands in the buffer.
AmPicture tiltShiftPlainly(const AmEffectParams& block, AmPicture source, int levels)
{
    const int w = source.view().width();
    const int h = source.view().height();
    const int top = block.top * h / 100;
    const int bottom = block.bottom * h / 100;
    const int left = block.left * w / 100;
    const int right = block.right * w / 100;
    const int half = (bottom - top) / 2;
    AmPicture result = source;
    for (int y = 0; y < h && h / 2 > half; ++y) {
        const int level =
            std::min((std::abs(y - (top + bottom) / 2) - half) * levels / (h / 2 - half), levels);
        const u16* kernel = static_cast<const u16*>(block.scratchC);
        for (int k = 1; k < level; ++k)
            kernel += (2 * k + 1) * (2 * k + 1);
        for (int x = 0; x < w; ++x) {
            if (level <= 0 || (y >= top && y < bottom && x >= left && x < right))
                continue;
            u32 total = 0;
            u32 b = 0;
            u32 g = 0;
            u32 r = 0;
            const u16* weight = kernel;
            for (int i = -level; i <= level; ++i)
                for (int j = -level; j <= level; ++j, ++weight) {
                    const Bgra p = source.at(std::clamp(x + j, 0, w - 1), std::clamp(y + i, 0, h - 1));
                    total += *weight;
                    b += *weight * p.b;
                    g += *weight * p.g;
                    r += *weight * p.r;
                }
            result.view().at(x, y) = {u8(b / total), u8(g / total), u8(r / total), source.at(x, y).a};
        }
    }
    return test::applied(64, result, test::percent(block.percent));
}

TEST(AmLocalReference, TiltShiftIsTheWeightedMean)
{
    struct Case {
        int w, h, levels, top, bottom;
        int percent = 70;
    };
    for (const Case c : {Case{1, 1, 5, 40, 60}, {1, 30, 5, 40, 60}, {3, 50, 5, 40, 60}, {130, 90, 6, 40, 60},
             {401, 60, 7, 20, 35}, {64, 64, 5, 80, 20}, {64, 65, 5, -30, 130}, {8192, 4, 14, 90, 95},
             {130, 90, 6, 40, 60, 400}, {130, 90, 6, 40, 60, -30}}) {
        const auto set = [=](AmEffectParams& b) {
            b.percent = c.percent, b.top = c.top, b.bottom = c.bottom;
        };
        eachFrame(
            "tilt-shift", 2, c.w, c.h, set, [=](auto& block, AmPicture& source, AmPicture& expected, auto&) {
                expected = tiltShiftPlainly(block, source, c.levels);
            });
    }
}

TEST(AmLocalReference, TheTiltShiftKernelsAreGaussians)
{
    AmBlock block("tilt-shift");
    block->percent = 50;
    AmPicture picture(64, 4);
    ASSERT_EQ(test::apply(block, picture), 0);
    ASSERT_EQ(block->scratchCCapacity, 2 * (9 + 25 + 49 + 81 + 121));
    const u16* kernel = static_cast<const u16*>(block->scratchC);
    // Level 1 of 5: sigma is 1.6; 4096 exp(-0.46875) at the sides, squared in the corners.
    const std::vector<u16> first(kernel, kernel + 9);
    EXPECT_EQ(first, (std::vector<u16>{1604, 2563, 1604, 2563, 4096, 2563, 1604, 2563, 1604}));
    // Level 5 of 5: sigma is 4; 4096 exp(-0.375) in the corners.
    EXPECT_EQ(kernel[9 + 25 + 49 + 81], 2815);
    EXPECT_EQ(kernel[9 + 25 + 49 + 81 + 60], 4096);
}

TEST(AmLocalReference, ExplosionIsTheMeanOfAllSamples)
{
    struct Case {
        int w, h, radius, posX, posY;
    };
    for (const Case c : {Case{1, 1, 50, 50, 50}, {1, 17, 0, 50, 50}, {7, 5, 100, 0, 100}, {9, 3, 50, 20, 80},
             {64, 48, 100, 50, 50}, {321, 40, 100, 100, 0}, {1000, 24, 50, 30, 50}, {1920, 8, 100, 50, 50},
             {64, 48, 500, 50, 50}, {330, 20, 500, 10, 90}, {1920, 6, 500, 50, 50}, {700, 12, 237, 90, 0}}) {
        const auto set = [=](AmEffectParams& b) { b.radius = c.radius, b.posX = c.posX, b.posY = c.posY; };
        eachFrame("explosion", 1, c.w, c.h, set, [=](auto&, AmPicture& source, AmPicture& expected, auto&) {
            const int n = std::max((c.radius * c.w) >> 10, 5);
            const int step = (n << 16) / (std::max(c.w, c.h) * (n - 1));
            const int cx = c.posX * c.w / 100;
            const int cy = c.posY * c.h / 100;
            for (int y = 0; y < c.h; ++y)
                for (int x = 0; x < c.w; ++x) {
                    int b = 0;
                    int g = 0;
                    int r = 0;
                    for (int i = 0; i < 2 * n - 1; ++i) {
                        const int scale = (0x10000 + (n - 1) * step + i * step) >> 8;
                        const Bgra p = source.at(std::clamp(cx + ((scale * (x - cx)) >> 8), 0, c.w - 1),
                            std::clamp(cy + ((scale * (y - cy)) >> 8), 0, c.h - 1));
                        b += p.b;
                        g += p.g;
                        r += p.r;
                    }
                    expected.view().at(x, y) = {
                        u8((b >> 1) / n), u8((g >> 1) / n), u8((r >> 1) / n), source.at(x, y).a};
                }
        });
    }
}

} // namespace
