// PNG files give back the pixels that they were made of.
#include "pictures/PictureCodecs.h"
#include "pictures/PngEncoder.h"
#include "pixels/widest.h"

#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <random>

namespace {

using pictures::PngEffort;
using pictures::PngEncoder;
using pictures::PngPixels;
using Bytes = std::vector<u8>;

constexpr PngEffort kEfforts[] = {PngEffort::fast, PngEffort::small};

/// What the PNG library, which checks every checksum, makes of a file: red, green, blue, alpha, top row
/// first.
Bytes readBack(std::span<const u8> file, u32 width, u32 height)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, file.data(), file.size()))
        return {};
    EXPECT_EQ(image.width, width);
    EXPECT_EQ(image.height, height);
    EXPECT_EQ(image.format, unsigned(PNG_FORMAT_RGBA));
    Bytes pixels(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) || image.warning_or_error)
        ADD_FAILURE() << image.message;
    return pixels;
}

/// Pictures that each suit another filter.
Bytes painted(int kind, u32 width, u32 height)
{
    std::minstd_rand random(unsigned(kind) + 1);
    Bytes pixels;
    const auto noise = [&] { return u32(random() >> 8); };
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width; ++x)
            for (u32 c = 0; c < 4; ++c) {
                const u32 values[] = {noise(), (x / 3 % 2) * 255, x * 7 + c, y * 5 + c,
                    x * y / 8 + noise() % 3, (x + y) * (c + 1)};
                pixels.push_back(u8(values[kind]));
            }
    return pixels;
}

constexpr int kKinds = 6;

TEST(PngFiles, HoldEveryPixelAndItsAlphaAtAnySize)
{
    for (const auto effort : kEfforts) {
        PngEncoder encoder(effort); // one for all, so what an earlier picture left does no harm
        for (const auto& [width, height] : {std::pair{300u, 200u}, {1u, 1u}, {1u, 9u}, {5u, 1u}, {33u, 17u}})
            for (int kind = 0; kind < kKinds; ++kind) {
                const Bytes pixels = painted(kind, width, height);
                const auto file = encoder.encode({.top = pixels.data(),
                    .stride = width * 4,
                    .width = width,
                    .height = height,
                    .order = PngPixels::Order::rgba});
                EXPECT_EQ(readBack(file, width, height), pixels)
                    << width << " x " << height << ", kind " << kind;
            }
    }
}

TEST(PngFiles, TakeRowsInAnyOrderAndBlueFirst)
{
    const Bytes pixels{1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18};
    PngEncoder encoder(PngEffort::fast);
    const auto file = encoder.encode({.top = pixels.data() + 8, .stride = -8, .width = 2, .height = 2});
    EXPECT_EQ(readBack(file, 2, 2), (Bytes{13, 12, 11, 14, 17, 16, 15, 18, 3, 2, 1, 4, 7, 6, 5, 8}));
}

TEST(PngFiles, HaveTheSameBytesAtEveryVectorWidth)
{
    const Bytes pixels = painted(4, 203, 50);
    for (const auto effort : kEfforts) {
        std::array<Bytes, 3> files;
        for (const auto level :
            {pixels::VectorLevel::base, pixels::VectorLevel::avx2, pixels::VectorLevel::avx512}) {
            pixels::limitVectors(level);
            PngEncoder encoder(effort);
            const auto file =
                encoder.encode({.top = pixels.data(), .stride = 203 * 4, .width = 203, .height = 50});
            files[std::size_t(level)].assign(file.begin(), file.end());
        }
        EXPECT_EQ(files[0], files[1]);
        EXPECT_EQ(files[0], files[2]);
    }
}

TEST(PngFiles, AreSmallerWithMoreEffortAndOnFlatPictures)
{
    const Bytes stripes = painted(1, 400, 300);
    const auto sizeWith = [&](PngEffort effort) {
        PngEncoder encoder(effort);
        return encoder.encode({.top = stripes.data(), .stride = 1600, .width = 400, .height = 300}).size();
    };
    EXPECT_LT(sizeWith(PngEffort::small), sizeWith(PngEffort::fast));
    EXPECT_LT(sizeWith(PngEffort::fast), stripes.size() / 50);
}

TEST(PngFiles, RefuseWhatNoFileCanHold)
{
    const Bytes pixel(4);
    PngEncoder encoder(PngEffort::fast);
    for (const auto& [width, height] : {std::pair{0u, 1u}, {1u, 0u}, {0x20000000u, 1u}, {40000u, 40000u}})
        EXPECT_TRUE(encoder.encode({.top = pixel.data(), .width = width, .height = height}).empty());
    EXPECT_TRUE(pictures::encode(pictures::Kind::png, pixel.data(), 0, 1).empty());
}

TEST(PngFiles, TellTheShapeOfPixels)
{
    const Bytes pixel(4);
    PngEncoder encoder(PngEffort::fast);
    const auto file = encoder.encode(
        {.top = pixel.data(), .stride = 4, .width = 1, .height = 1, .aspectWidth = 64, .aspectHeight = 45});
    const std::string text(file.begin(), file.end());
    EXPECT_NE(text.find(std::string("\0\0\0\x09pHYs\0\0\0\x40\0\0\0\x2D\0", 17)), std::string::npos);
    EXPECT_EQ(readBack(file, 1, 1), pixel);
}

} // namespace
