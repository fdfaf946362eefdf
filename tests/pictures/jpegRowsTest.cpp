// JPEG files decoded into and encoded from rows in any order, against the decoder of files and packed pixels.
#include "pictures/JpegCodec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <sstream>

namespace {

constexpr u32 kWidth = 37;
constexpr u32 kHeight = 41; // more rows than are handed to the library at once, and no multiple of them
constexpr std::ptrdiff_t kStride = 4 * (kWidth + 3);

std::vector<u8> picture()
{
    std::mt19937 random(5);
    std::vector<u8> bytes(std::size_t{kWidth} * kHeight * 4);
    for (u8& byte : bytes)
        byte = u8(random());
    return bytes;
}

/// Memory with space between its rows, which nobody may touch.
struct PaddedRows {
    std::vector<u8> memory = std::vector<u8>(kStride * kHeight, 0xA5);

    u8* bottomUp() { return memory.data() + kStride * (kHeight - 1); }
    /// The picture from the top.
    std::vector<u8> turned() const
    {
        std::vector<u8> all;
        for (u32 y = kHeight; y-- > 0;)
            all.insert(all.end(), memory.begin() + y * kStride, memory.begin() + y * kStride + kWidth * 4);
        return all;
    }
    bool paddingIsWhole() const
    {
        for (u32 y = 0; y < kHeight; ++y)
            if (std::any_of(memory.begin() + y * kStride + kWidth * 4, memory.begin() + (y + 1) * kStride,
                    [](u8 byte) { return byte != 0xA5; }))
                return false;
        return true;
    }
};

TEST(JpegRows, AreThePixelsThatTheFileHolds)
{
    for (const bool fullColour : {true, false}) {
        const auto file = pictures::encodeJpeg(picture().data(), kWidth, kHeight, {90, fullColour});
        std::istringstream stream(std::string(file.begin(), file.end()));
        const pictures::Decoded decoded = pictures::decode(stream);
        ASSERT_EQ(decoded.outcome, pictures::Decoded::Outcome::picture);
        PaddedRows rows;
        ASSERT_TRUE(pictures::decodeJpegInto(file, kWidth, kHeight, {rows.bottomUp(), -kStride}));
        EXPECT_EQ(std::memcmp(rows.turned().data(), decoded.pixels.get(), kWidth * kHeight * 4), 0);
        EXPECT_TRUE(rows.paddingIsWhole());
    }
}

TEST(JpegRows, GiveTheFileOfThePackedPicture)
{
    const std::vector<u8> pixels = picture();
    PaddedRows rows;
    for (u32 y = 0; y < kHeight; ++y)
        std::copy_n(pixels.begin() + y * kWidth * 4, kWidth * 4, rows.bottomUp() - y * kStride);
    EXPECT_EQ(pictures::encodeJpeg(pictures::Rows<const u8>{rows.bottomUp(), -kStride}, kWidth, kHeight),
        pictures::encodeJpeg(pixels.data(), kWidth, kHeight));
}

TEST(JpegRows, OfAnotherSizeOrADamagedFileAreRefused)
{
    const auto file = pictures::encodeJpeg(picture().data(), kWidth, kHeight);
    PaddedRows rows;
    const PaddedRows untouched;
    EXPECT_FALSE(pictures::decodeJpegInto(file, kWidth, kHeight - 1, {rows.bottomUp(), -kStride}));
    EXPECT_FALSE(pictures::decodeJpegInto(file, kWidth + 1, kHeight, {rows.bottomUp(), -kStride}));
    EXPECT_EQ(rows.memory, untouched.memory);
    const std::span<const u8> cut(file.data(), file.size() / 2);
    EXPECT_FALSE(pictures::decodeJpegInto(cut, kWidth, kHeight, {rows.bottomUp(), -kStride}));
    EXPECT_TRUE(rows.paddingIsWhole());
}

} // namespace
