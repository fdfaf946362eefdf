// Greys, channels, inversions, tints and exposure: a pixel's new colour follows from its old one.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "pixels/ByteTables.h"
#include "pixels/numbers.h"

#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
using pixels::clampByte;
using pixels::grey;

// Keeps the channel that the variant names, and alpha always.
struct Channel {
    u32 mask;
    explicit Channel(const AmEffectParams& b) : mask(0xFFu << 8 * (b.variant & 3) | 0xFF000000u) { }
    Bgra operator()(Bgra p) const { return pixels::fromWord(pixels::toWord(p) & mask); }
};

template <i32 kVariant> void isVariant(AmEffectParams& b) { b.variant = kVariant; }

constexpr Bgra greyScale(Bgra p) { return grey(p, u8(y8(p))); }
constexpr Bgra xRays(Bgra p) { return grey(p, u8(255 - y4(p))); }
constexpr Bgra negative(Bgra p) { return pixels::fromWord(pixels::toWord(p) ^ 0x00FFFFFFu); }

struct Binary {
    int threshold;
    explicit Binary(const AmEffectParams& b) : threshold(percentOf(b) * 256 / 100) { }
    Bgra operator()(Bgra p) const { return grey(p, y4(p) < threshold ? 0 : 255); }
};

constexpr Bgra thermal(Bgra p)
{
    const u8 y = u8(y4(p));
    const bool hot = y >= 128;
    return {hot ? u8(0) : y, hot ? u8(255 - y) : y, hot ? y : u8(0), p.a};
}

constexpr u8 full(bool on) { return on ? 255 : 0; }

constexpr Bgra threeTones(Bgra p)
{
    const int k = (p.b + 2 * p.g + p.r) >> 6;
    return {full(k > 9), full(k > 4 && k <= 9), full(k <= 4), p.a};
}

constexpr Bgra fourTones(Bgra p)
{
    const int k = (p.b + 2 * p.g + p.r) >> 6;
    return {full(k <= 4 || (k > 9 && k <= 13)), full(k > 4), full(k <= 9), p.a};
}

// Folds the upper half of the values down: 128 stays 128, and 255 becomes 1.
constexpr u8 folded(u8 c) { return c < 128 ? c : u8(256 - c); }
constexpr Bgra solarize(Bgra p) { return {folded(p.b), folded(p.g), folded(p.r), p.a}; }

// Moves blue and red apart, green by half as much.
struct Temperature {
    int shift;
    explicit Temperature(const AmEffectParams& b) : shift((percentOf(b) - 50) * 3) { }
    Bgra operator()(Bgra p) const
    {
        return {clampByte(p.b - shift), clampByte(p.g - (shift >> 1)), clampByte(p.r + shift), p.a};
    }
};

template <i32 kPercent> void forcePercent(AmEffectParams& b) { b.percent = kPercent; }

// The picture's luma with the colour's two chroma values.
struct Tint {
    int b;
    int g;
    int r;
    explicit Tint(const AmEffectParams& block)
    {
        const int cb = 128 + ((112 * block.blue - 74 * block.green - 38 * block.red) >> 8);
        const int cr = 128 + ((112 * block.red - 94 * block.green - 18 * block.blue) >> 8);
        b = (cb - 128) * 516;
        g = 39424 - 100 * cb - 208 * cr;
        r = (cr - 128) * 408;
    }
    Bgra operator()(Bgra p) const
    {
        const int y = (7450 * p.b + 38442 * p.g + 19668 * p.r + 65535) >> 8;
        return {clampByte((y + b) >> 8), clampByte((y + g) >> 8), clampByte((y + r) >> 8), p.a};
    }
};

template <u8 kRed, u8 kGreen, u8 kBlue> void forceColour(AmEffectParams& b)
{
    b.red = kRed;
    b.green = kGreen;
    b.blue = kBlue;
}

constexpr Bgra hoodwink(Bgra p) { return {u8(p.b * 29 >> 8), u8(p.g * 150 >> 8), u8(p.r * 77 >> 8), p.a}; }

// Grey with a curve of two parabolas that meet in the middle.
struct Ink {
    int c;
    explicit Ink(const AmEffectParams& b) : c(100 - percentOf(b)) { }
    Bgra operator()(Bgra p) const
    {
        const int y = y8(p);
        const int k = y - 255;
        const int dark = ((y + c) * y + 255) >> 8;
        const int light = 255 - (((k - c) * k + 255) >> 8);
        return grey(p, u8(y < 128 ? dark : light));
    }
};

i32 exposure(const Frame& f)
{
    static const pixels::ByteTable logarithms = pixels::tableOf(
        [](int i) { return u8(pixels::roundHalfUp(255 * std::log(i + 1.0) / std::log(256.0))); });
    const int offset = percentOf(f.block) - 50;
    const pixels::ByteTable curve =
        pixels::tableOf([&](int i) { return clampByte(logarithms[std::size_t(i)] + offset); });
    pixels::mapTables(f.src, f.dst, {curve, curve, curve});
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 5,
        .entry = {.place = 5, .name = "Exposure", .guid = "A73E6F11-FE9B-477e-BF7C-B9DB88003BD9"},
        .shown = {.title = "Exposure", .summary = "Logarithmic brightening with an offset."},
        .reads = {.percent = {"Exposure",
                      "added to the logarithm, which brightens by itself; 50 adds nothing"}},
        .defaults = {.usageMask = 1},
        .apply = byRows(exposure)},
    {.id = 7,
        .entry = {.place = 7, .name = "BChannel", .guid = "7B4A1028-03F3-46cf-958C-C0596EFA6E8E"},
        .shown = {.title = "Blue Channel", .summary = "Keeps the blue channel."},
        .prepare = isVariant<0>,
        .apply = byRows(eachPixel<Channel>)},
    {.id = 8,
        .entry = {.place = 8, .name = "GChannel", .guid = "1DAD6175-1CE0-4b44-86AA-9243C7CE7CDF"},
        .shown = {.title = "Green Channel", .summary = "Keeps the green channel."},
        .prepare = isVariant<1>,
        .apply = byRows(eachPixel<Channel>)},
    {.id = 9,
        .entry = {.place = 9, .name = "RChannel", .guid = "4552E5F7-011A-4378-99DC-3D8BD5C83426"},
        .shown = {.title = "Red Channel", .summary = "Keeps the red channel."},
        .prepare = isVariant<2>,
        .apply = byRows(eachPixel<Channel>)},
    {.id = 10,
        .entry = {.place = 10, .name = "AChannel", .guid = "F7C9BCF4-9734-47f4-BBEB-9BAF1BE12600"},
        .shown = {.title = "Alpha Channel", .summary = "Keeps the alpha channel; the colour becomes black."},
        .prepare = isVariant<3>,
        .apply = byRows(eachPixel<Channel>)},
    {.id = 11,
        .entry = {.place = 11, .name = "GrayScale", .guid = "E158CA95-1927-407f-9D4C-A199EA98ED3D"},
        .shown = {.title = "Greyscale", .summary = "Grey of the same luma."},
        .apply = byRows(eachPixel<greyScale>)},
    {.id = 12,
        .entry = {.place = 12, .name = "Binary", .guid = "040AC214-A380-4129-8F48-9B9623CDF3F4"},
        .shown = {.title = "Black or White",
            .summary = "White where the picture is bright, black elsewhere."},
        .reads = {.percent = {"Threshold", "luma from which a pixel is white"}},
        .defaults = {.usageMask = 1},
        .apply = byRows(eachPixel<Binary>)},
    {.id = 13,
        .entry = {.place = 13, .name = "XRays", .guid = "CA4F3A55-8308-406f-AD90-6652AD8A9027"},
        .shown = {.title = "X-Rays", .summary = "The inverted picture in grey."},
        .apply = byRows(eachPixel<xRays>)},
    {.id = 14,
        .entry = {.place = 14, .name = "Negative", .guid = "949D6D25-CA9B-42b9-A7A5-5D99306FFEA8"},
        .shown = {.title = "Negative", .summary = "Inverts every channel."},
        .apply = byRows(eachPixel<negative>)},
    {.id = 15,
        .entry = {.place = 15, .name = "Thermal", .guid = "AC3E13AF-60A8-4066-B8E6-C02D82DBB0C3"},
        .shown = {.title = "Thermal", .summary = "Red for bright pixels, cyan for dark ones."},
        .apply = byRows(eachPixel<thermal>)},
    {.id = 16,
        .entry = {.place = 16, .name = "Thitone", .guid = "3F6EDCA3-CEF2-4d62-9728-A88B692AC526"},
        .shown = {.title = "Three Tones", .summary = "Pure red, green or blue by brightness."},
        .apply = byRows(eachPixel<threeTones>)},
    {.id = 17,
        .entry = {.place = 17, .name = "Thitone2", .guid = "6B09897C-0818-4adc-B068-275F31541802"},
        .shown = {.title = "Four Tones", .summary = "Magenta, yellow, cyan or green by brightness."},
        .apply = byRows(eachPixel<fourTones>)},
    {.id = 18,
        .entry = {.place = 18, .name = "Solarize", .guid = "77FEDA0E-29B1-45ba-B5F7-7A50F1463701"},
        .shown = {.title = "Solarize", .summary = "Inverts the bright half of every channel."},
        .apply = byRows(eachPixel<solarize>)},
    {.id = 25,
        .entry = {.place = 25, .name = "Cold", .guid = "1F638635-9117-4b4f-91D2-477E7F87E04E"},
        .shown = {.title = "Cold", .summary = "Strong shift from red to blue."},
        .prepare = forcePercent<10>,
        .apply = byRows(eachPixel<Temperature>)},
    {.id = 26,
        .entry = {.place = 26, .name = "Cool", .guid = "871971A5-E35C-4082-90B5-80028BE36F2E"},
        .shown = {.title = "Cool", .summary = "Gentle shift from red to blue."},
        .prepare = forcePercent<30>,
        .apply = byRows(eachPixel<Temperature>)},
    {.id = 27,
        .entry = {.place = 27, .name = "Warm", .guid = "C460AE11-EF42-4b44-B660-0C90566F2862"},
        .shown = {.title = "Warm", .summary = "Gentle shift from blue to red."},
        .prepare = forcePercent<65>,
        .apply = byRows(eachPixel<Temperature>)},
    {.id = 28,
        .entry = {.place = 28, .name = "Hot", .guid = "97E29015-F24F-411e-8EE5-A82C4F75EDCF"},
        .shown = {.title = "Hot", .summary = "Strong shift from blue to red."},
        .prepare = forcePercent<80>,
        .apply = byRows(eachPixel<Temperature>)},
    {.id = 29,
        .entry = {.place = 29, .name = "OneColor", .guid = "972A1027-9F87-4899-8309-999FE80BE5CA"},
        .shown = {.title = "One Colour", .summary = "Brightness of the picture, hue of one colour."},
        .reads = {.colour = true},
        .defaults = {.usageMask = 16},
        .apply = byRows(eachPixel<Tint>)},
    {.id = 30,
        .entry = {.place = 30, .name = "Brown", .guid = "C796A702-8C5C-46cd-89A5-D9320AB223F7"},
        .shown = {.title = "Brown", .summary = "The picture in one colour: brown."},
        .prepare = forceColour<230, 190, 20>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 31,
        .entry = {.place = 31, .name = "Chocolate", .guid = "9B478F78-6FE4-46b1-AF38-7C83100B7E5D"},
        .shown = {.title = "Chocolate", .summary = "The picture in one colour: chocolate."},
        .prepare = forceColour<92, 51, 23>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 32,
        .entry = {.place = 32, .name = "Wheat", .guid = "E64DFBF0-8148-490a-9D30-3D1F9DA856A4"},
        .shown = {.title = "Wheat", .summary = "The picture in one colour: wheat."},
        .prepare = forceColour<245, 222, 179>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 33,
        .entry = {.place = 33, .name = "Linen", .guid = "7E752FC7-A265-4547-9B51-80489BB77AFE"},
        .shown = {.title = "Linen", .summary = "The picture in one colour: linen."},
        .prepare = forceColour<250, 240, 230>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 34,
        .entry = {.place = 34, .name = "Purple", .guid = "19489B92-8D48-45a8-A6AE-C8F6F2F1D30E"},
        .shown = {.title = "Purple", .summary = "The picture in one colour: purple."},
        .prepare = forceColour<128, 0, 128>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 35,
        .entry = {.place = 35, .name = "Olive", .guid = "0F5B42A1-695C-4a9b-8779-D739B1CDA5A0"},
        .shown = {.title = "Olive",
            .summary = "The picture in one dark colour: green and blue in equal parts."},
        .prepare = forceColour<0, 128, 128>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 36,
        .entry = {.place = 36, .name = "Teal", .guid = "E1579294-2A5C-425b-98A5-73059E7446C1"},
        .shown = {.title = "Teal",
            .summary = "The picture in one dark colour: red and green in equal parts."},
        .prepare = forceColour<128, 128, 0>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 37,
        .entry = {.place = 37, .name = "Blue", .guid = "78E6798F-D1DE-457b-9E7B-2B4143EF85F4"},
        .shown = {.title = "Blue", .summary = "The picture in one colour: blue."},
        .prepare = forceColour<0, 0, 255>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 38,
        .entry = {.place = 38, .name = "Green", .guid = "744B39F9-DD2E-4240-B9EE-7D89DDBF936A"},
        .shown = {.title = "Green", .summary = "The picture in one colour: green."},
        .prepare = forceColour<0, 255, 0>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 39,
        .entry = {.place = 39, .name = "Red", .guid = "BCD68DC5-51F0-4172-997C-8F44F72EBDD4"},
        .shown = {.title = "Red", .summary = "The picture in one colour: red."},
        .prepare = forceColour<255, 0, 0>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 40,
        .entry = {.place = 40, .name = "Yellow", .guid = "0CB2F411-1826-4ffb-9FAD-FB069F1CC43C"},
        .shown = {.title = "Yellow", .summary = "The picture in one colour: yellow."},
        .prepare = forceColour<255, 255, 0>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 41,
        .entry = {.place = 41, .name = "Fuchsia", .guid = "FCAD5000-5138-4ab7-A4D5-95D341DF9248"},
        .shown = {.title = "Fuchsia", .summary = "The picture in one colour: fuchsia."},
        .prepare = forceColour<255, 0, 255>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 42,
        .entry = {.place = 42, .name = "Cyan", .guid = "1439AA44-8C10-48f4-B4F2-8730B762E3F4"},
        .shown = {.title = "Cyan", .summary = "The picture in one colour: cyan."},
        .prepare = forceColour<0, 255, 255>,
        .apply = byRows(eachPixel<Tint>)},
    {.id = 43,
        .entry = {.place = 43, .name = "Hoodwink", .guid = "F9BE7032-E538-4479-998D-BF28B82D58CD"},
        .shown = {.title = "Hoodwink",
            .summary = "Weakens each channel to its share of the luma: a dark green picture."},
        .apply = byRows(eachPixel<hoodwink>)},
    {.id = 59,
        .entry = {.place = 59, .name = "Lnk", .guid = "1CF75407-3C18-4c3b-A5CC-E51C919E14AA"},
        .shown = {.title = "Ink Contrast", .summary = "Grey with more contrast, as of ink on paper."},
        .reads = {.percent = {"Contrast", "contrast"}},
        .apply = byRows(eachPixel<Ink>)},
};
static_assert(isSound(kRows));

const Registered registered{Family::filter, kRows};

} // namespace

} // namespace KEXSDK::am
