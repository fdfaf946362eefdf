// Scaling of pictures against OGRE's, which its textures take their mipmaps from.
#include "pictures/PictureCodecs.h"

#include <OgreImage.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <span>

namespace {

std::vector<u8> noise(std::size_t size)
{
    std::mt19937 random(11);
    std::vector<u8> bytes(size);
    for (u8& byte : bytes)
        byte = u8(random());
    return bytes;
}

TEST(PictureScaling, GivesTheBytesOfOgresBilinearFilter)
{
    constexpr std::pair<u32, u32> kSizes[] = {
        {1, 1}, {2, 3}, {7, 5}, {16, 16}, {33, 17}, {64, 48}, {101, 3}, {640, 7}, {3, 1500}};
    for (const auto& [fromWidth, fromHeight] : kSizes)
        for (const auto& [width, height] : kSizes) {
            const std::vector<u8> source = noise(std::size_t{fromWidth} * fromHeight * 4);
            pictures::Decoded picture{pictures::Decoded::Outcome::picture, fromWidth, fromHeight,
                std::unique_ptr<u8[], pictures::Free>(static_cast<u8*>(std::malloc(source.size())))};
            std::ranges::copy(source, picture.pixels.get());
            ASSERT_TRUE(pictures::scale(picture, width, height));
            std::vector<u8> expected(std::size_t{width} * height * 4);
            Ogre::Image::scale(
                Ogre::PixelBox(fromWidth, fromHeight, 1, Ogre::PF_A8R8G8B8, const_cast<u8*>(source.data())),
                Ogre::PixelBox(width, height, 1, Ogre::PF_A8R8G8B8, expected.data()),
                Ogre::Image::FILTER_BILINEAR);
            EXPECT_TRUE(std::ranges::equal(expected, std::span(picture.pixels.get(), expected.size())))
                << fromWidth << " x " << fromHeight << " to " << width << " x " << height;
        }
}

} // namespace
