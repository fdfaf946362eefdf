// The colour of a temperature, its blend with a pixel's lightness kept, and the tint.
#include "effects/lightroom/WhiteBalance.h"

#include "pixels/Scratch.h"
#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <algorithm>
#include <cmath>

namespace lightroom {

namespace {

using pixels::Bgra;
using pixels::clamped;

struct Colour {
    int b, g, r;
};

// The colour of a black body at t hundreds of kelvins, 10 to 400; a fit with two branches per channel.
Colour blackBody(double t)
{
    const auto byteOf = [](double x) { return int(clamped(x, 0.0, 1.0) * 255); };
    Colour c{255, 255, 255};
    if (t > 66)
        c.r = byteOf(1.29293618606274509804 * std::pow(t - 60, -0.1332047592));
    c.g = byteOf(t <= 66 ? 0.39008157876901960784 * std::log(t) - 0.63184144378862745098
                         : 1.12989086089529411765 * std::pow(t - 60, -0.0755148492));
    if (t <= 19)
        c.b = 0;
    else if (t < 66)
        c.b = byteOf(0.54320678911019607843 * std::log(t - 10) - 1.19625408914);
    return c;
}

double kelvinsOf(int value)
{
    return value < Temperature::kNeutral ? 26000.0 - value : std::max(23000.0 - value - 4900, 1700.0);
}

struct HueSaturation {
    int hue;        ///< 0..254 around the circle
    int saturation; ///< 0..255
};

// Quotients of small integers come out of single-precision division exactly as integer division gives them,
// and vectorise.
inline int quotient(int dividend, int divisor) { return int(float(dividend) / float(divisor)); }

inline HueSaturation hueSaturation(int b, int g, int r, int most, int least)
{
    const int chroma = most - least;
    const int sum = most + least;
    const int span = sum < 256 ? sum : 510 - sum; // the largest chroma at this lightness
    const int divisor = std::max(chroma, 1);
    const int sector = most == r ? 0 : most == g ? 85 : 170;
    const int across = most == r ? g - b : most == g ? b - r : r - g;
    const int hue = sector + quotient(42 * across, divisor);
    return {hue < 0 ? hue + 255 : hue, quotient(255 * chroma, std::max(span, 1))};
}

// The channel that lies `offset` twelfths of the circle before red, for a hue in twelfths.
inline u8 channelOf(float offset, float twelfths, float lightness, float amplitude)
{
    float k = offset + twelfths;
    k = k >= 12 ? k - 12 : k;
    const float shape = std::max(-1.0f, std::min(std::min(k - 3, 9 - k), 1.0f));
    return u8(int(clamped(lightness - amplitude * shape, 0.0f, 255.0f)));
}

inline Bgra withLightnessOf(Bgra original, Bgra p)
{
    const auto most = [](Bgra q) { return std::max(std::max(int(q.r), int(q.g)), int(q.b)); };
    const auto least = [](Bgra q) { return std::min(std::min(int(q.r), int(q.g)), int(q.b)); };
    const HueSaturation hs = hueSaturation(p.b, p.g, p.r, most(p), least(p));
    const float lightness = float((most(original) + least(original)) / 2);
    const float degrees = float(hs.hue) * 360.0f / 255.0f;
    const float amplitude = float(hs.saturation) / 255.0f * std::min(lightness, 255.0f - lightness);
    const float twelfths = degrees / 30;
    return {channelOf(4, twelfths, lightness, amplitude), channelOf(8, twelfths, lightness, amplitude),
        channelOf(0, twelfths, lightness, amplitude), original.a};
}

} // namespace

Temperature::Temperature(int value)
{
    const double kelvins = kelvinsOf(value);
    const double ratio = std::fabs(1 - kelvins / kNeutral) * 1.7;
    const Colour colour = blackBody(clamped(kelvins, 1000.0, 40000.0) / 100);
    const auto table = [ratio](int full) {
        return pixels::tableOf(
            [=](int v) { return u8(clamped(v * (1 - ratio) + v * full / 255.0 * ratio, 0.0, 255.0)); });
    };
    blend_ = {.b = table(colour.b), .g = table(colour.g), .r = table(colour.r)};
}

void Temperature::applyToRow(pixels::ConstView from, pixels::View to) const
{
    const pixels::Scratch<Bgra> memory(from.width());
    const pixels::View blended(reinterpret_cast<u8*>(memory.data()), from.extent());
    pixels::mapTables(from, blended, blend_);
    pixels::rows::map2(from, blended, to, [](Bgra p, Bgra colour) { return withLightnessOf(p, colour); });
}

Tint::Tint(float value)
{
    // Beyond this factor every grey but 0 saturates.
    constexpr int kMost = 0x10000;
    factor_ = std::clamp(pixels::truncated(double(value) * 100 / 225), -kMost, kMost);
}

void Tint::apply(pixels::ConstView from, pixels::View to) const
{
    pixels::rows::map(from, to, [factor = factor_](Bgra p) {
        const int grey = (601 * p.g + 306 * p.r + 117 * p.b) >> 10;
        const int magenta = (grey * factor) >> 8;
        const int green = (grey * -factor) >> 8;
        return Bgra{pixels::clampByte(p.b + magenta), pixels::clampByte(p.g + green),
            pixels::clampByte(p.r + magenta), p.a};
    });
}

} // namespace lightroom
