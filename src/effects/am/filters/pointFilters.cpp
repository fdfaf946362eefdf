// Greys, channels, inversions and tints: a pixel's new colour follows from its old one.
#include "effects/am/library/amFilters.h"
#include "pixels/numbers.h"

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

// 256 - 128 is 128 again; as a byte 256 - c is what remains of -c.
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

constexpr EffectRow kRows[] = {
    {7, eachPixel<Channel>, isVariant<0>},
    {8, eachPixel<Channel>, isVariant<1>},
    {9, eachPixel<Channel>, isVariant<2>},
    {10, eachPixel<Channel>, isVariant<3>},
    {11, eachPixel<greyScale>},
    {12, eachPixel<Binary>},
    {13, eachPixel<xRays>},
    {14, eachPixel<negative>},
    {15, eachPixel<thermal>},
    {16, eachPixel<threeTones>},
    {17, eachPixel<fourTones>},
    {18, eachPixel<solarize>},
    {25, eachPixel<Temperature>, forcePercent<10>},
    {26, eachPixel<Temperature>, forcePercent<30>},
    {27, eachPixel<Temperature>, forcePercent<65>},
    {28, eachPixel<Temperature>, forcePercent<80>},
    {29, eachPixel<Tint>},
    {30, eachPixel<Tint>, forceColour<230, 190, 20>},
    {31, eachPixel<Tint>, forceColour<92, 51, 23>},
    {32, eachPixel<Tint>, forceColour<245, 222, 179>},
    {33, eachPixel<Tint>, forceColour<250, 240, 230>},
    {34, eachPixel<Tint>, forceColour<128, 0, 128>},
    {35, eachPixel<Tint>, forceColour<0, 128, 128>},
    {36, eachPixel<Tint>, forceColour<128, 128, 0>},
    {37, eachPixel<Tint>, forceColour<0, 0, 255>},
    {38, eachPixel<Tint>, forceColour<0, 255, 0>},
    {39, eachPixel<Tint>, forceColour<255, 0, 0>},
    {40, eachPixel<Tint>, forceColour<255, 255, 0>},
    {41, eachPixel<Tint>, forceColour<255, 0, 255>},
    {42, eachPixel<Tint>, forceColour<0, 255, 255>},
    {43, eachPixel<hoodwink>},
    {59, eachPixel<Ink>},
};
static_assert(idsAscend(kRows));

} // namespace

std::span<const EffectRow> pointFilters() { return kRows; }

} // namespace KEXSDK::am
