// Pictures read as greys of 16 bits, and the greymaps and pixmaps that hold them.
#include "pictures/PictureCodecs.h"

#include <gtest/gtest.h>
#include <png.h>

#include <sstream>

namespace {

using pictures::Decoded;
using pictures::DecodedGrey;
using namespace std::string_literals;

DecodedGrey greyOf(const std::string& bytes)
{
    std::istringstream file(bytes);
    return pictures::decodeGrey(file);
}

/// The first channels of pixels as decode() gives them, blue first; empty unless there is a picture.
std::vector<int> bytesOf(const std::string& bytes)
{
    std::istringstream file(bytes);
    const Decoded picture = pictures::decode(file);
    std::vector<int> all;
    for (u32 i = 0; picture.pixels && i < picture.width * picture.height * 4; ++i)
        if (i % 4 < 3)
            all.push_back(picture.pixels[i]);
    return all;
}

TEST(GreyPictures, GreymapsAndPixmapsOfEveryDepthAreScaledToTheirLargestValue)
{
    struct Row {
        std::string file;
        std::vector<int> bytes;
        std::vector<u16> greys;
        bool fine;
    };
    const Row rows[] = {
        {"P5\n2 1\n255\n\x01\xFF"s, {1, 1, 1, 255, 255, 255}, {257, 65535}, false},
        {"P5 2 1 65535\n\x12\x34\xFF\xFF"s, {18, 18, 18, 255, 255, 255}, {0x1234, 65535}, true},
        {"P5 3 1 65535\n\x01\x81\x01\x82\x80\x7F"s, {1, 1, 1, 2, 2, 2, 128, 128, 128}, {385, 386, 32895},
            true},
        {"P5#a\n#b c\r 2\t1 # 9\n1000 \x01\xF4\x03\xE8"s, {128, 128, 128, 255, 255, 255}, {32768, 65535},
            true},
        {"P5 3 1 3\n\x01\x03\x09"s, {85, 85, 85, 255, 255, 255, 255, 255, 255}, {21845, 65535, 65535}, false},
        {"P6 1 1 255\n\x0A\x14\x1E"s, {30, 20, 10}, {u16((10 * 77 + 20 * 150 + 30 * 29) * 257 / 256 + 1)},
            false},
        {"P6 1 1 65535\n\xFF\xFF\x00\x00\x00\x00"s, {0, 0, 255}, {pictures::luma(65535, 0, 0)}, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file);
        EXPECT_EQ(bytesOf(row.file), row.bytes);
        const DecodedGrey grey = greyOf(row.file);
        EXPECT_EQ(grey.values.size(), row.greys.size());
        for (std::size_t i = 0; i < grey.values.size(); ++i)
            EXPECT_NEAR(grey.values[i], row.greys[i], row.file.starts_with("P6") ? 1 : 0);
        EXPECT_EQ(grey.fine, row.fine);
    }
}

TEST(GreyPictures, DamagedGreymapsAreUnreadable)
{
    for (const std::string& file : {"P5"s, "P5 2"s, "P5 2 1"s, "P5 2 1 255"s, "P5 2 1 255\n"s,
             "P5 2 1 255\n\x01"s, "P5 0 1 255\n\x01"s, "P5 1 1 0\n\x01"s, "P5 1 1 65536\n\x01\x01"s,
             "P5 -1 1 255\n\x01"s, "P5 x 1 255\n\x01"s, "P5 2 1 65535\n\x01\x01\x01"s,
             "P6 1 1 255\n\x01\x01"s, "P5 16000 16000 255\n\x01"s, "P5 1 1 255#\n"s}) {
        EXPECT_EQ(greyOf(file).outcome, Decoded::Outcome::unreadable) << file;
        EXPECT_TRUE(greyOf(file).values.empty()) << file;
        EXPECT_TRUE(bytesOf(file).empty()) << file;
    }
    EXPECT_EQ(greyOf("P5 16385 1 255\n\x01").outcome, Decoded::Outcome::tooLarge);
    EXPECT_EQ(greyOf("P5 99999999999999999999 1 255\n\x01").outcome, Decoded::Outcome::tooLarge);
}

TEST(GreyPictures, A16BitPngKeepsItsDepth)
{
    const std::vector<u16> values{0, 1, 255, 256, 4660, 65534, 65535, 32768};
    std::vector<u16> noise(64);
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] = u16(i * 40503 + values[i % values.size()]); // too much for a file of a few bytes
    std::string file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp p, png_bytep data, png_size_t size) {
            static_cast<std::string*>(png_get_io_ptr(p))->append(reinterpret_cast<char*>(data), size);
        },
        [](png_structp) {});
    png_set_IHDR(png, info, 8, 8, 16, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
        PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_set_swap(png);
    for (std::size_t y = 0; y < 8; ++y)
        png_write_row(png, reinterpret_cast<png_bytep>(noise.data() + 8 * y));
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);

    const DecodedGrey grey = greyOf(file);
    ASSERT_EQ(grey.outcome, Decoded::Outcome::picture);
    EXPECT_TRUE(grey.fine);
    EXPECT_EQ(grey.values, noise);
    EXPECT_EQ(greyOf(file.substr(0, file.size() / 2)).outcome, Decoded::Outcome::unreadable);
}

TEST(GreyPictures, ColoursOf8BitsCountByTheirLuma)
{
    const u8 pixels[] = {0, 0, 255, 255, 0, 255, 0, 0, 255, 0, 0, 128, 255, 255, 255, 255};
    const auto file = pictures::encode(pictures::Kind::bmp, pixels, 4, 1);
    const DecodedGrey grey = greyOf({file.begin(), file.end()});
    ASSERT_EQ(grey.values.size(), 4u);
    EXPECT_FALSE(grey.fine);
    EXPECT_NEAR(grey.values[0], 65535 * 0.299, 130) << "red";
    EXPECT_NEAR(grey.values[1], 65535 * 0.587, 130) << "green, transparent";
    EXPECT_NEAR(grey.values[2], 65535 * 0.114, 130) << "blue";
    EXPECT_EQ(grey.values[3], 65535);
}

} // namespace
