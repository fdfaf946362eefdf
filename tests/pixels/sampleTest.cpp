// Pixels that are read from elsewhere.
#include "pixels/sample.h"

#include "pixels/Buffer.h"
#include "pixels/Padded.h"

#include <sys/mman.h>

#include <thread>

namespace {

using namespace pixels;
using test::onEveryVectorLevel;
using test::Padded;

// Where a pixel comes from in a picture turned by a right angle and stretched to another size.
Point turned(Extent from, Extent to, int x, int y)
{
    return {y * from.width / to.height, (to.width - 1 - x) * from.height / to.width};
}

void expectTurned(ConstView src, Padded dst, const Padded& before)
{
    for (int y = 0; y < dst.size.height; ++y)
        for (int x = 0; x < dst.size.width; ++x) {
            const Point from = turned(src.extent(), dst.size, x, y);
            ASSERT_EQ(dst.view().at(x, y), src.at(from.x, from.y)) << x << ", " << y;
            dst.view().at(x, y) = ConstView(before.memory.data(), before.size, before.stride()).at(x, y);
        }
    EXPECT_EQ(dst.memory, before.memory) << "bytes between the rows";
}

TEST(Sample, TheKernelSaysWhereEveryPixelComesFrom)
{
    onEveryVectorLevel([] {
        for (const auto& [from, to] : {std::pair<Extent, Extent>{{37, 5}, {21, 9}}, {{1, 1}, {3, 3}},
                 {{64, 3}, {1, 1}}, {{7, 300}, {331, 210}}}) {
            Padded src(from.width, from.height);
            const Padded before(to.width, to.height);
            Padded dst = before;
            sample(src.view(), dst.view(),
                [from = from, to = to](int x, int y) { return turned(from, to, x, y); });
            expectTurned(src.view(), dst, before);
        }
    });
}

TEST(Sample, ReadsTheOldPixelsWhenItWritesToThem)
{
    onEveryVectorLevel([] {
        Padded src(190, 190);
        const Padded before = src;
        Padded picture = src;
        sample(picture.view(), picture.view(), [](int x, int y) {
            return turned({190, 190}, {190, 190}, x, y);
        });
        expectTurned(src.view(), picture, before);
    });
}

TEST(Sample, TheCopyInPlaceIsAllocatedOnceAndWithoutMemoryThePictureStays)
{
    std::thread([] { // a thread without scratch memory as yet
        Padded picture(300, 40);
        const std::vector<u8> before = picture.memory;
        const auto mirror = [&] {
            sample(picture.view(), picture.view(), [](int x, int y) { return Point{299 - x, y}; });
        };
        limitBuffers(100);
        mirror();
        EXPECT_EQ(picture.memory, before);
        limitBuffers(std::numeric_limits<std::size_t>::max());
        mirror();
        EXPECT_NE(picture.memory, before);
        limitBuffers(0);
        mirror();
        EXPECT_EQ(picture.memory, before);
        limitBuffers(std::numeric_limits<std::size_t>::max());
    })
        .join();
}

TEST(Sample, PartsOfRowsMixWhatTheyRead)
{
    onEveryVectorLevel([] {
        Padded src(50, 4);
        std::vector<Bgra> row(50, Bgra{1, 2, 3, 4});
        widest([from = ConstView(src.view()), to = row.data()] {
            sampleRow(from, to, 3, 47, [](int x, auto at) { return at({x, 3}) ^ at({49 - x, 1}); });
        });
        for (int x = 0; x < 50; ++x) {
            const u32 mixed = toWord(src.view().at(x, 3)) ^ toWord(src.view().at(49 - x, 1));
            ASSERT_EQ(toWord(row[std::size_t(x)]), x < 3 || x >= 47 ? 0x04030201 : mixed) << x;
        }
    });
}

TEST(Sample, RowsMayLieGigabytesApart)
{
    constexpr std::size_t kStride = (std::size_t(1) << 31) + 4096;
    void* const memory = mmap(
        nullptr, kStride + 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    const View far(static_cast<u8*>(memory), {40, 2}, std::ptrdiff_t(kStride));
    for (int x = 0; x < 40; ++x) {
        far.at(x, 0) = {u8(x), 0, 0, 0};
        far.at(x, 1) = {0, u8(x), 0, 0};
    }
    onEveryVectorLevel([&] {
        Padded dst(40, 2);
        sample(far, dst.view(), [](int x, int y) { return Point{39 - x, 1 - y}; });
        for (int x = 0; x < 40; ++x) {
            EXPECT_EQ(dst.view().at(x, 0), (Bgra{0, u8(39 - x), 0, 0}));
            EXPECT_EQ(dst.view().at(x, 1), (Bgra{u8(39 - x), 0, 0, 0}));
        }
    });
    munmap(memory, kStride + 4096);
}

TEST(Sample, PackedPlacesComeBackAndStayInside)
{
    for (const Point place : {Point{0, 0}, {8191, 0}, {0, 8191}, {8191, 8191}})
        EXPECT_EQ(unpackedPlace(packedPlace(place), {8192, 8192}), place);
    EXPECT_EQ(unpackedPlace(0xFFFFFFFF, {7, 5}), (Point{6, 4}));
    EXPECT_EQ(unpackedPlace(packedPlace({7, 2}), {7, 5}), (Point{6, 2}));
    EXPECT_EQ(unpackedPlace(packedPlace({3, 5}), {7, 5}), (Point{3, 4}));
}

} // namespace
