// Quantising to bytes with an ordered pattern, and writing by libpng.
#include "pngFile.h"

#include <png.h>

#include <array>
#include <cstdint>
#include <stdexcept>

namespace artwork {

namespace {

using Rgba = std::array<std::uint8_t, 4>;
using Bytes = Grid<Rgba>;

// An ordered pattern hides the steps of smooth shades and, unlike noise, compresses well.
float threshold(int x, int y)
{
    int value = 0;
    for (int bit = 0; bit < 3; ++bit) {
        const int column = x >> bit & 1;
        const int row = y >> bit & 1;
        value = value * 4 + ((column ^ row) * 2 + row);
    }
    return (float(value) + 0.5f) / 64;
}

std::uint8_t quantised(float value, float step)
{
    return std::uint8_t(std::clamp(int(std::floor(value * 255 + step)), 0, 255));
}

Bytes quantised(const Picture& picture)
{
    Bytes bytes(picture.size(), {});
    bytes.each([&](const Place& p, Rgba& out) {
        const Pixel& pixel = picture.at(p.column, p.row);
        const float step = threshold(p.column, p.row);
        out[3] = quantised(pixel.alpha, pixel.alpha > 0 ? step : 0);
        if (out[3] > 0)
            out = {quantised(pixel.colour.r, step), quantised(pixel.colour.g, step),
                quantised(pixel.colour.b, step), out[3]};
    });
    return bytes;
}

// Gives transparent pixels the colours beside them, because scaling blends colours without regard to alpha.
void spreadColours(Bytes& bytes)
{
    constexpr int kReach = 2;
    const Bytes before = bytes;
    const auto [width, height] = bytes.size();
    bytes.each([&, w = width, h = height](const Place& p, Rgba& out) {
        if (out[3] > 0)
            return;
        int sum[3] = {};
        int count = 0;
        for (int y = std::max(0, p.row - kReach); y <= std::min(h - 1, p.row + kReach); ++y)
            for (int x = std::max(0, p.column - kReach); x <= std::min(w - 1, p.column + kReach); ++x) {
                const Rgba& beside = before.at(x, y);
                if (beside[3] == 0)
                    continue;
                ++count;
                for (std::size_t i = 0; i < 3; ++i)
                    sum[i] += beside[i];
            }
        for (std::size_t i = 0; count > 0 && i < 3; ++i)
            out[i] = std::uint8_t(sum[i] / count);
    });
}

struct Kind {
    bool colour = false;
    bool alpha = false;

    std::size_t channels() const { return (colour ? 3 : 1) + (alpha ? 1 : 0); }
    png_uint_32 format() const
    {
        return (colour ? PNG_FORMAT_FLAG_COLOR : 0u) | (alpha ? PNG_FORMAT_FLAG_ALPHA : 0u);
    }
};

Kind kindOf(Bytes& bytes)
{
    Kind kind;
    bytes.each([&](const Place&, const Rgba& pixel) {
        kind.colour |= pixel[0] != pixel[1] || pixel[1] != pixel[2];
        kind.alpha |= pixel[3] != 255;
    });
    return kind;
}

std::vector<std::uint8_t> packed(Bytes& bytes, Kind kind)
{
    std::vector<std::uint8_t> all;
    all.reserve(std::size_t(bytes.size().width) * std::size_t(bytes.size().height) * kind.channels());
    bytes.each([&](const Place&, const Rgba& pixel) {
        all.insert(all.end(), pixel.begin(), pixel.begin() + (kind.colour ? 3 : 1));
        if (kind.alpha)
            all.push_back(pixel[3]);
    });
    return all;
}

void write(const std::vector<std::uint8_t>& pixels, Size size, Kind kind, const std::filesystem::path& file)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(size.width);
    image.height = png_uint_32(size.height);
    image.format = kind.format();
    if (!png_image_write_to_file(&image, file.c_str(), 0, pixels.data(), 0, nullptr))
        throw std::runtime_error("cannot write " + file.string() + ": " + image.message);
}

} // namespace

void save(const Picture& picture, const std::filesystem::path& file)
{
    Bytes bytes = quantised(picture);
    if (kindOf(bytes).alpha)
        spreadColours(bytes);
    const Kind kind = kindOf(bytes);
    const std::filesystem::path partial = file.string() + ".part";
    write(packed(bytes, kind), picture.size(), kind, partial);
    std::filesystem::rename(partial, file);
}

} // namespace artwork
