// Cut picture files are told from whole ones without decoding them.
#include "pictures/wholePicture.h"

#include "pictures/JpegCodec.h"
#include "pictures/PictureCodecs.h"

#include <gtest/gtest.h>

#include <span>
#include <vector>

namespace {

using pictures::isWholeByStructure;
using pictures::Kind;

constexpr u32 kWidth = 23;
constexpr u32 kHeight = 17;

std::vector<u8> fileOf(Kind kind)
{
    std::vector<u8> pixels(kWidth * kHeight * 4);
    u32 state = 1;
    for (u8& byte : pixels)
        byte = u8((state = state * 1664525u + 1013904223u) >> 24);
    return pictures::encode(kind, pixels.data(), kWidth, kHeight);
}

class WholePicture : public testing::TestWithParam<Kind> { };

TEST_P(WholePicture, EndsNowhereBeforeItsEnd)
{
    std::vector<u8> file = fileOf(GetParam());
    ASSERT_EQ(isWholeByStructure(file), true);
    // What stands behind a TGA file's pixels is a footer, which older programs leave out.
    const std::size_t footer = GetParam() == Kind::tga ? file.size() - 18 - kWidth * kHeight * 4 : 0;
    for (std::size_t size = 0; size < file.size() - footer; ++size)
        ASSERT_NE(isWholeByStructure(std::span(file).first(size)), true) << size << " of " << file.size();
    file.insert(file.end(), 100, 0);
    EXPECT_EQ(isWholeByStructure(file), true) << "bytes behind the end";
}

TEST_P(WholePicture, IsNotOneWhoseEndIsZeros)
{
    if (GetParam() == Kind::bmp || GetParam() == Kind::tga)
        GTEST_SKIP() << "any bytes are pixels";
    std::vector<u8> file = fileOf(GetParam());
    std::fill(file.end() - 100, file.end(), u8(0));
    EXPECT_EQ(isWholeByStructure(file), false);
}

INSTANTIATE_TEST_SUITE_P(Kinds, WholePicture, testing::Values(Kind::png, Kind::jpeg, Kind::bmp, Kind::tga));

TEST(WholePng, HasNoBitWrong)
{
    std::vector<u8> file = fileOf(Kind::png);
    for (std::size_t at = 0; at < file.size(); at += 7) {
        file[at] ^= 0x10;
        ASSERT_NE(isWholeByStructure(file), true) << at;
        file[at] ^= 0x10;
    }
}

TEST(WholeJpeg, DoesNotEndWithItsPreview)
{
    const std::vector<u8> preview = fileOf(Kind::jpeg);
    std::vector<u8> file = fileOf(Kind::jpeg);
    std::vector<u8> segment{0xFF, 0xE1, u8((preview.size() + 2) >> 8), u8(preview.size() + 2)};
    segment.insert(segment.end(), preview.begin(), preview.end());
    file.insert(file.begin() + 2, segment.begin(), segment.end());
    EXPECT_EQ(isWholeByStructure(file), true);
    EXPECT_EQ(isWholeByStructure(std::span(file).first(2 + segment.size())), false);
    EXPECT_EQ(isWholeByStructure(std::span(file).first(file.size() - 2)), false);
}

TEST(WholePicture, IsNotToldOfOtherKinds)
{
    const std::vector<u8> gif{'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0, 0, 0, 0x3B};
    EXPECT_EQ(isWholeByStructure(gif), std::nullopt);
}

} // namespace
