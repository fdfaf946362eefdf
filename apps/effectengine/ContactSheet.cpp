// Drawing of tiles and labels, with the small font of the stb library, which needs no font file.
#include "effectengine/ContactSheet.h"

#include "effectengine/PartialFile.h"
#include "effectengine/pictureFiles.h"
#include "pictures/PictureCodecs.h"

#include <stb/stb_easy_font.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace tool {

namespace {

constexpr pixels::Bgra kGround{32, 32, 32, 255};
constexpr pixels::Bgra kInk{225, 225, 225, 255};
constexpr int kGap = 8;
constexpr int kLetterScale = 2;
constexpr int kLabelHeight = 10 * kLetterScale;

struct Corner {
    float x, y, z;
    unsigned char colour[4];
};
using Quad = std::array<Corner, 4>;

} // namespace

ContactSheet::ContactSheet(std::size_t tiles, int columns, pixels::Extent tile)
    : columns_(std::clamp(columns, 1, int(std::max<std::size_t>(1, tiles)))),
      tile_(tile)
{
    const int rows = (int(tiles) + columns_ - 1) / columns_;
    size_ = {columns_ * (tile.width + kGap) + kGap, rows * (tile.height + kLabelHeight + kGap) + kGap};
    pixels_.assign(std::size_t(size_.width) * std::size_t(size_.height), kGround);
}

pixels::Point ContactSheet::cornerOf(std::size_t tile) const
{
    const int column = int(tile) % columns_;
    const int row = int(tile) / columns_;
    return {kGap + column * (tile_.width + kGap), kGap + row * (tile_.height + kLabelHeight + kGap)};
}

void ContactSheet::put(std::size_t tile, pixels::ConstView picture)
{
    const int scale = picture.width() / tile_.width;
    const pixels::Point corner = cornerOf(tile);
    const int area = scale * scale;
    for (int y = 0; y < tile_.height; ++y) {
        for (int x = 0; x < tile_.width; ++x) {
            int b = 0;
            int g = 0;
            int r = 0;
            for (int dy = 0; dy < scale; ++dy) {
                for (const pixels::Bgra p :
                    picture.pictureRow(y * scale + dy).subspan(std::size_t(x * scale), std::size_t(scale))) {
                    b += p.b * p.a + kGround.b * (255 - p.a);
                    g += p.g * p.a + kGround.g * (255 - p.a);
                    r += p.r * p.a + kGround.r * (255 - p.a);
                }
            }
            const auto mean = [&](int sum) { return u8((sum + 255 * area / 2) / (255 * area)); };
            at(corner.x + x, corner.y + y) = {mean(b), mean(g), mean(r), 255};
        }
    }
}

void ContactSheet::label(std::size_t tile, std::string text)
{
    const auto width = [](std::string& words) { return stb_easy_font_width(words.data()) * kLetterScale; };
    while (text.size() > 3 && width(text) > tile_.width)
        text = text.substr(0, text.size() - 3) + "..";
    std::vector<Quad> quads(64 * text.size() + 1);
    const int count =
        stb_easy_font_print(0, 0, text.data(), nullptr, quads.data(), int(quads.size() * sizeof(Quad)));
    const pixels::Point corner = cornerOf(tile);
    const int top = corner.y + tile_.height + kLetterScale;
    for (int i = 0; i < count; ++i) {
        const Quad& quad = quads[std::size_t(i)];
        for (int y = int(quad[0].y) * kLetterScale; y < int(quad[2].y) * kLetterScale; ++y) {
            for (int x = int(quad[0].x) * kLetterScale; x < int(quad[2].x) * kLetterScale; ++x) {
                if (x < tile_.width && y < kLabelHeight)
                    at(corner.x + x, top + y) = kInk;
            }
        }
    }
}

void ContactSheet::save(const std::filesystem::path& file) const
{
    const auto bytes = pictures::encode(pictures::Kind::png, reinterpret_cast<const u8*>(pixels_.data()),
        u32(size_.width), u32(size_.height));
    if (bytes.empty())
        throwCannotWrite(file, EFBIG);
    writeFile(file, bytes);
}

} // namespace tool
