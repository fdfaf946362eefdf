// Tone curves, saturation, and the order of the steps.
#include "effects/lightroom/ColourSteps.h"

#include "pixels/numbers.h"
#include "pixels/rows.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lightroom {

namespace {

using pixels::Bgra;
using pixels::clamped;

u8 byteOf(double x) { return u8(clamped(x, 0.0, 255.0)); }

// The last float below the pole of a curve, for values from the pole on; smaller values as they are.
float below(float value, float pole) { return value >= pole ? std::nextafter(pole, 0.0f) : value; }

struct Brightness {
    double f;
    explicit Brightness(float value)
        : f(value > 0 ? 1 + double(value) / 100 : (1 - 1 / (0.99 + double(value) / 253)) * 0.6)
    {
    }
    u8 operator()(u8 x) const { return byteOf(f > 0 ? x * f : x + f * 255); }
};

// Stretches what lies between two levels to the full range, or narrows the full range to what lies between.
struct Contrast {
    int low;
    int high;
    double stretch;
    explicit Contrast(float value)
    {
        constexpr double kPole = 255;
        const double part =
            double(value == float(kPole) ? std::nextafter(float(kPole), 0.0f) : value) / kPole;
        const double v = value > 0 ? 1 / (1 - part) - 1 : part;
        low = pixels::truncated(clamped(v * 100 / 2, -1e6, 1e6));
        high = 255 - low;
        if (high < low) {
            high = 127;
            low = 120;
        }
        if (low < -127)
            low = -120;
        stretch = (low >= 0 ? 255 - 2 * low : 255 + 2 * low) / 255.0;
    }
    u8 operator()(u8 x) const
    {
        if (low <= 0)
            return byteOf(x * stretch - low);
        return x <= low ? 0 : x > high ? 255 : byteOf((x - low) / stretch);
    }
};

} // namespace

pixels::ByteTable toneTable(float exposure, float brightness, float contrast)
{
    const double gain = std::exp2(double(exposure) / 50 * 0.6);
    const Brightness brighter(brightness);
    const Contrast contrasted(contrast);
    return pixels::tableOf([&](int v) {
        u8 x = u8(v);
        if (exposure != 0)
            x = byteOf(x * gain);
        if (brightness != 0)
            x = brighter(x);
        if (contrast != 0)
            x = contrasted(x);
        return x;
    });
}

Saturation::Saturation(float value) : toMean_(0)
{
    const double s = double(below(value, 150)) / 100;
    if (s > 0)
        toMean_ = 1 - 1 / (1.5 - s);
    else if (s < 0)
        toMean_ = -s;
}

void Saturation::apply(pixels::ConstView from, pixels::View to) const
{
    pixels::rows::map(from, to, [toMean = toMean_](Bgra p) {
        const int mean = (p.r + p.g + p.b) / 3;
        const auto moved = [=](int channel) {
            return u8(int(clamped(channel + (mean - channel) * toMean, 0.0, 255.0)));
        };
        return Bgra{moved(p.b), moved(p.g), moved(p.r), p.a};
    });
}

void ColourSteps::apply(const ColourValues& values, pixels::ConstView src, pixels::View dst)
{
    std::optional<Temperature> temperature;
    std::optional<Tint> tint;
    std::optional<pixels::ByteTables> tone;
    std::optional<Saturation> saturation;
    if (values.temperature != Temperature::kNeutral)
        temperature.emplace(values.temperature);
    if (values.tint != 0)
        tint.emplace(values.tint);
    if (values.exposure != 0 || values.brightness != 0 || values.contrast != 0) {
        const pixels::ByteTable table = toneTable(values.exposure, values.brightness, values.contrast);
        tone = {table, table, table};
    }
    if (values.saturation != 0)
        saturation.emplace(values.saturation);
    const bool vignette = !values.vignette.neutral() && vignette_.prepare(values.vignette, dst.extent());

    // Row by row: each step takes what the one before it left in the row, which is still in the cache.
    pixels::rows::anyOrder(dst.extent(), [&](int y) {
        const pixels::Extent size{dst.width(), 1};
        const pixels::View to(dst.bytes() + y * dst.strideBytes(), size);
        pixels::ConstView from(src.bytes() + y * src.strideBytes(), size);
        if (temperature)
            temperature->applyToRow(std::exchange(from, to), to);
        if (tint)
            tint->apply(std::exchange(from, to), to);
        if (tone)
            pixels::mapTables(std::exchange(from, to), to, *tone);
        if (saturation)
            saturation->apply(std::exchange(from, to), to);
        if (vignette)
            vignette_.applyToRow(std::exchange(from, to), to, y);
        pixels::rows::copy(from, to); // nothing to do after any step
    });
}

} // namespace lightroom
