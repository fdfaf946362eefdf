// Compositing of colours, and the blur.
#include "Picture.h"

namespace artwork {

Colour hued(float hue, float saturation, float value)
{
    const auto channel = [&](float shift) {
        const float t = hue + shift;
        const float position = std::abs((t - std::floor(t)) * 6 - 3) - 1;
        return value * mix(1, clamp01(position), saturation);
    };
    return {channel(0), channel(2.0f / 3), channel(1.0f / 3)};
}

void cover(Pixel& pixel, Colour colour, float opacity)
{
    constexpr float kInvisible = 1e-5f; // and the quotient below stays finite
    if (opacity < kInvisible)
        return;
    const float under = pixel.alpha * (1 - opacity);
    pixel.alpha = opacity + under;
    pixel.colour = (colour * opacity + pixel.colour * under) * (1 / pixel.alpha);
}

void cover(Picture& picture, const Plane& mask, Colour colour, float opacity)
{
    picture.each([&](const Place& p, Pixel& pixel) {
        cover(pixel, colour, clamp01(mask.at(p.column, p.row) * opacity));
    });
}

namespace {

// The mean of 2 * reach + 1 cells along one line of `count` cells that lie `step` apart.
void boxLine(float* cells, int count, int step, int reach, std::vector<float>& line)
{
    line.resize(std::size_t(count + 2 * reach + 1));
    for (int i = 0; i < int(line.size()); ++i)
        line[std::size_t(i)] = cells[std::ptrdiff_t(std::clamp(i - reach, 0, count - 1)) * step];
    double sum = 0;
    for (int i = 0; i < 2 * reach; ++i)
        sum += double(line[std::size_t(i)]);
    const double share = 1.0 / (2 * reach + 1);
    for (int i = 0; i < count; ++i) {
        sum += double(line[std::size_t(i + 2 * reach)]);
        cells[std::ptrdiff_t(i) * step] = float(sum * share);
        sum -= double(line[std::size_t(i)]);
    }
}

} // namespace

Plane blurred(const Plane& plane, float width)
{
    Plane result = plane;
    const auto [columns, rows] = plane.size();
    // Three boxes of this reach have the variance of the Gaussian: 3 * ((2 * reach + 1)^2 - 1) / 12.
    const float sigma = width * float(rows);
    const int reach = std::max(1, int(std::lround((std::sqrt(4 * sigma * sigma + 1) - 1) / 2)));
    std::vector<float> line;
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < rows; ++y)
            boxLine(&result.at(0, y), columns, 1, reach, line);
        for (int x = 0; x < columns; ++x)
            boxLine(&result.at(x, 0), rows, columns, reach, line);
    }
    return result;
}

} // namespace artwork
