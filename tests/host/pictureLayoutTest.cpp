// Pictures of hosts in every layout, against a reader and a writer of single pixels, and the bytes around
// them.
#include "host/PictureLayout.h"

#include "pixels/Padded.h"

#include <gmock/gmock.h>
#include <tbb/global_control.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Channels = std::array<int, 4>; // blue, green, red, alpha

// Where the bytes of a pixel stand; -1 for alpha and X that a format has not.
struct FormatFacts {
    u32 format;
    int bytes;
    int blue, green, red, alpha, x;
};

constexpr FormatFacts kFormats[] = {
    {EFFECTHOST_BGRA, 4, 0, 1, 2, 3, -1},
    {EFFECTHOST_RGBA, 4, 2, 1, 0, 3, -1},
    {EFFECTHOST_BGRX, 4, 0, 1, 2, -1, 3},
    {EFFECTHOST_RGBX, 4, 2, 1, 0, -1, 3},
    {EFFECTHOST_BGR, 3, 0, 1, 2, -1, -1},
    {EFFECTHOST_RGB, 3, 2, 1, 0, -1, -1},
};

Channels read(const FormatFacts& facts, bool premultiplied, const u8* pixel)
{
    Channels c{
        pixel[facts.blue], pixel[facts.green], pixel[facts.red], facts.alpha < 0 ? 255 : pixel[facts.alpha]};
    if (premultiplied && facts.alpha >= 0) {
        for (int i = 0; i < 3; ++i)
            c[i] = c[3] == 0 ? 0 : int(std::min(255.0, std::floor(c[i] * 255.0 / c[3] + 0.5)));
    }
    return c;
}

void write(const FormatFacts& facts, bool premultiplied, Channels c, u8* pixel)
{
    for (int i = 0; premultiplied && i < 3; ++i)
        c[i] = int(std::floor(c[i] * c[3] / 255.0 + 0.5));
    pixel[facts.blue] = u8(c[0]);
    pixel[facts.green] = u8(c[1]);
    pixel[facts.red] = u8(c[2]);
    if (facts.alpha >= 0)
        pixel[facts.alpha] = u8(c[3]);
    if (facts.x >= 0)
        pixel[facts.x] = 255;
}

void fillWithNoise(std::span<u8> bytes, unsigned seed)
{
    std::mt19937 random(seed);
    // A quarter each of the least, the largest and small values: in alpha, they are the special ones.
    std::ranges::generate(bytes, [&]() -> u8 {
        const auto drawn = random();
        return std::array{u8(drawn), u8(drawn & 7), u8(0), u8(255)}[drawn >> 8 & 3];
    });
}

// Memory of a host with a picture in it. Nobody may read or write what lies between the rows and around them.
class HostPicture {
public:
    HostPicture(const FormatFacts& format, u32 flags, bool backwards, pixels::Extent size)
        : facts(format),
          rowBytes(std::size_t(size.width) * format.bytes),
          memory(kGap + (rowBytes + kGap) * size.height)
    {
        const auto step = std::ptrdiff_t(rowBytes + kGap);
        u8* const first = memory.data() + kGap + (backwards ? (size.height - 1) * step : 0);
        picture = {first, backwards ? -step : step, size.width, size.height, format.format, flags};
        fillWithNoise(memory, 1);
    }
    HostPicture(const HostPicture&) = delete;
    HostPicture& operator=(const HostPicture&) = delete;

    bool premultiplied() const { return picture.flags & EFFECTHOST_PREMULTIPLIED; }

    /// Where in the memory the pixel of column x lies in the row that is `v` rows above the bottom one.
    std::size_t indexOf(int x, int v) const
    {
        const int row = picture.flags & EFFECTHOST_BOTTOM_UP ? v : picture.height - 1 - v;
        const auto* const pixel = static_cast<u8*>(picture.pixels) + row * picture.stride + x * facts.bytes;
        return std::size_t(pixel - memory.data());
    }

    /// Calls run() while the address sanitizer, if there is one, lets nobody touch the gaps.
    template <class Run> void guarded(Run run)
    {
#if defined(__SANITIZE_ADDRESS__)
        for (std::size_t gap = 0; gap < memory.size(); gap += rowBytes + kGap)
            ASAN_POISON_MEMORY_REGION(memory.data() + gap, kGap);
        run();
        ASAN_UNPOISON_MEMORY_REGION(memory.data(), memory.size());
#else
        run();
#endif
    }

    static constexpr std::size_t kGap = 37;
    const FormatFacts& facts;
    const std::size_t rowBytes;
    std::vector<u8> memory;
    EffectHostPicture picture{};
};

/// Calls run(picture) for pictures of each layout, with rows that fill vectors in every way; one size is
/// large enough for several threads.
void onEveryLayout(const std::function<void(HostPicture&)>& run)
{
    for (const FormatFacts& facts : kFormats)
        for (u32 flags = 0; flags < 4; ++flags)
            for (const bool backwards : {false, true})
                for (const int width : {1, 2, 3, 15, 16, 17, 33, 64, 1920}) {
                    SCOPED_TRACE(testing::Message() << "format " << facts.format << ", flags " << flags
                                                    << ", backwards " << backwards << ", width " << width);
                    HostPicture picture(facts, flags, backwards, {width, width < 1920 ? 3 : 40});
                    run(picture);
                }
}

/// Calls run() with each vector width, on one thread and on several.
template <class Run> void onEveryMachine(Run run)
{
    for (const std::size_t threads : {1, 4}) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        test::onEveryVectorLevel(run);
    }
}

/// The picture's pixels as the engine holds them, one at a time.
std::vector<u8> nativeBytesOf(const HostPicture& host)
{
    std::vector<u8> bytes;
    for (int v = 0; v < host.picture.height; ++v)
        for (int x = 0; x < host.picture.width; ++x)
            for (const int c : read(host.facts, host.premultiplied(), &host.memory[host.indexOf(x, v)]))
                bytes.push_back(u8(c));
    return bytes;
}

TEST(PictureLayout, EveryLayoutIsReadAsDescribed)
{
    onEveryLayout([](HostPicture& host) {
        const auto memory = host.memory;
        auto expected = nativeBytesOf(host);
        expected.insert(expected.end(), 64, 0xA5);
        onEveryMachine([&] {
            std::vector<u8> native(expected.size(), 0xA5);
            host.guarded([&] { host::toNative(host.picture, native.data()); });
            EXPECT_TRUE(native == expected);
        });
        EXPECT_TRUE(host.memory == memory);
    });
}

TEST(PictureLayout, EveryLayoutIsWrittenAsDescribed)
{
    onEveryLayout([](HostPicture& host) {
        std::vector<u8> native(std::size_t(host.picture.width) * host.picture.height * 4);
        fillWithNoise(native, 2);
        const auto before = host.memory;
        auto expected = before;
        const u8* pixel = native.data();
        for (int v = 0; v < host.picture.height; ++v)
            for (int x = 0; x < host.picture.width; ++x, pixel += 4)
                write(host.facts, host.premultiplied(), {pixel[0], pixel[1], pixel[2], pixel[3]},
                    &expected[host.indexOf(x, v)]);
        onEveryMachine([&] {
            std::ranges::copy(before, host.memory.begin());
            host.guarded([&] { host::fromNative(native.data(), host.picture); });
            EXPECT_TRUE(host.memory == expected);
        });
    });
}

TEST(PictureLayout, FirstRowAndBytesOfPixelsAreWhatTheNamesSay)
{
    u8 rgba[] = {255, 1, 2, 10, /**/ 3, 255, 4, 20, /**/ 99, 99, /**/ 5, 6, 255, 30, /**/ 7, 8, 9, 40};
    u8 native[16];
    host::toNative({rgba, 10, 2, 2, EFFECTHOST_RGBA, 0}, native);
    EXPECT_THAT(native, ElementsAre(255, 6, 5, 30, 9, 8, 7, 40, 2, 1, 255, 10, 4, 255, 3, 20));

    u8 bgr[12];
    host::fromNative(native, {bgr, 6, 2, 2, EFFECTHOST_BGR, EFFECTHOST_BOTTOM_UP});
    EXPECT_THAT(bgr, ElementsAre(255, 6, 5, 9, 8, 7, 2, 1, 255, 4, 255, 3));
}

// All pairs of a colour and an alpha: column c, row a, with c in the three colours in three different ways.
struct AllPairs {
    AllPairs()
    {
        for (int a = 0; a < 256; ++a)
            for (int c = 0; c < 256; ++c)
                for (const int value : {c, 255 - c, c ^ 0x55, a})
                    bytes.push_back(u8(value));
    }
    EffectHostPicture premultiplied()
    {
        return {
            bytes.data(), 1024, 256, 256, EFFECTHOST_BGRA, EFFECTHOST_BOTTOM_UP | EFFECTHOST_PREMULTIPLIED};
    }
    std::vector<u8> bytes;
};

TEST(PictureLayout, AlphaMultipliesAndDividesEveryByteToTheNearest)
{
    test::onEveryVectorLevel([] {
        AllPairs pairs;
        std::vector<u8> divided(pairs.bytes.size());
        host::toNative(pairs.premultiplied(), divided.data());
        AllPairs multiplied;
        host::fromNative(pairs.bytes.data(), multiplied.premultiplied());
        for (std::size_t i = 0; i < pairs.bytes.size(); ++i) {
            const int c = pairs.bytes[i];
            const int a = pairs.bytes[i | 3];
            const bool colour = i % 4 < 3;
            const int quotient = a == 0 ? 0 : std::min(255, (2 * 255 * c + a) / (2 * a));
            ASSERT_EQ(divided[i], colour ? quotient : a) << c << " / " << a;
            ASSERT_EQ(multiplied.bytes[i], colour ? (2 * c * a + 255) / (2 * 255) : a) << c << " * " << a;
        }
    });
}

TEST(PictureLayout, PremultipliedPixelsComeBackFromStraightOnes)
{
    test::onEveryVectorLevel([] {
        AllPairs pairs;
        for (std::size_t i = 0; i < pairs.bytes.size(); ++i)
            pairs.bytes[i] = std::min(pairs.bytes[i], pairs.bytes[i | 3]); // the colours that alpha allows
        std::vector<u8> native(pairs.bytes.size());
        host::toNative(pairs.premultiplied(), native.data());
        AllPairs back;
        host::fromNative(native.data(), back.premultiplied());
        EXPECT_TRUE(back.bytes == pairs.bytes);
    });
}

TEST(PictureLayout, PicturesOfTheEnginesOwnFormAreUsedWhereTheyLie)
{
    u8 memory[3 * 8 + 16];
    const EffectHostPicture own{memory, 8, 2, 3, EFFECTHOST_BGRA, EFFECTHOST_BOTTOM_UP};
    EXPECT_EQ(host::nativePixels(own), memory);
    const EffectHostPicture fromItsTop{memory + 16, -8, 2, 3, EFFECTHOST_BGRA, 0};
    EXPECT_EQ(host::nativePixels(fromItsTop), memory) << "the same bytes, described from the top";
    const EffectHostPicture oneRow{memory, 16, 2, 1, EFFECTHOST_BGRA, 0};
    EXPECT_EQ(host::nativePixels(oneRow), memory) << "one row has no order and no padding";

    const EffectHostPicture others[] = {
        {memory, 8, 2, 3, EFFECTHOST_BGRA, 0},
        {memory + 16, -8, 2, 3, EFFECTHOST_BGRA, EFFECTHOST_BOTTOM_UP},
        {memory, 12, 2, 3, EFFECTHOST_BGRA, EFFECTHOST_BOTTOM_UP},
        {memory, 8, 2, 3, EFFECTHOST_RGBA, EFFECTHOST_BOTTOM_UP},
        {memory, 8, 2, 3, EFFECTHOST_BGRX, EFFECTHOST_BOTTOM_UP},
        {memory, 8, 2, 3, EFFECTHOST_BGR, EFFECTHOST_BOTTOM_UP},
        {memory, 8, 2, 3, EFFECTHOST_BGRA, EFFECTHOST_BOTTOM_UP | EFFECTHOST_PREMULTIPLIED},
    };
    for (const EffectHostPicture& other : others)
        EXPECT_FALSE(host::isNative(other)) << "number " << &other - others;
}

TEST(PictureLayout, FaultsOfDescriptionsAreNamed)
{
    u8 pixel[4];
    const EffectHostPicture good{pixel, 4 * 4, 4, 3, EFFECTHOST_RGBX, EFFECTHOST_PREMULTIPLIED};
    const auto faultWhen = [&](auto change) {
        EffectHostPicture picture = good;
        change(picture);
        return host::faultOf(picture).value_or("none");
    };
    using Picture = EffectHostPicture;
    constexpr auto kFarthest = std::numeric_limits<std::ptrdiff_t>::max();
    constexpr auto kFarthestBack = std::numeric_limits<std::ptrdiff_t>::min();

    EXPECT_EQ(faultWhen([](Picture&) {}), "none");
    EXPECT_EQ(faultWhen([](Picture& p) { p.stride = -p.stride; }), "none");
    EXPECT_EQ(faultWhen([](Picture& p) { p.format = EFFECTHOST_RGB, p.stride = 12; }), "none");
    EXPECT_EQ(faultWhen([](Picture& p) { p.width = p.height = 4096, p.stride = 4 * 4096; }), "none");

    EXPECT_THAT(faultWhen([](Picture& p) { p.pixels = nullptr; }), HasSubstr("null"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.width = 0; }), HasSubstr("0 x 3"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.height = -1; }), HasSubstr("4 x -1"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.width = 4097, p.stride = 4 * 4097; }), HasSubstr("4097 x 3"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.height = 4097; }), HasSubstr("4 x 4097"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.stride = 15; }), HasSubstr("15"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.stride = -15; }), HasSubstr("-15"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.stride = 0; }), HasSubstr("stride"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.format = EFFECTHOST_RGB, p.stride = 11; }), HasSubstr("11"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.stride = kFarthest; }), HasSubstr("stride"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.stride = kFarthestBack; }), HasSubstr("stride"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.format = 6; }), HasSubstr("format 6"));
    EXPECT_THAT(faultWhen([](Picture& p) { p.flags = 7; }), HasSubstr("flags 7"));
}

} // namespace
