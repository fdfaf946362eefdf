// Rainbows, which replace the hue, and a look that changes the lightness apart from the colour.
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amRow.h"
#include "pixels/columns.h"
#include "pixels/numbers.h"

#include <array>
#include <cmath>

namespace KEXSDK::am {

namespace {

using pixels::Bgra;
namespace rows = pixels::rows;

constexpr int kDegreesPerSector = 60;

// A hue as the places of a pixel's largest, middle and smallest channel, in bits of its word, and the share
// of the way down from the largest at which the middle one stands.
struct Hue {
    int most;
    int middle;
    int least;
    int share; ///< of kDegreesPerSector

    explicit Hue(int degrees)
    {
        constexpr int kBlue = 0;
        constexpr int kGreen = 8;
        constexpr int kRed = 16;
        constexpr int kPlaces[6][3] = {
            {kRed, kGreen, kBlue},
            {kGreen, kRed, kBlue},
            {kGreen, kBlue, kRed},
            {kBlue, kGreen, kRed},
            {kBlue, kRed, kGreen},
            {kRed, kBlue, kGreen},
        };
        const int sector = degrees / kDegreesPerSector % 6;
        const int beyond = degrees % kDegreesPerSector;
        most = kPlaces[sector][0];
        middle = kPlaces[sector][1];
        least = kPlaces[sector][2];
        share = sector % 2 == 0 ? kDegreesPerSector - beyond : beyond;
    }
};

enum class Saturation { kept, full };

// Gives every pixel of row y the hue degreesAt(y, height). Whole numbers give the exact truncated results of
// the six sectors.
template <Saturation kSaturation> i32 rainbow(const Frame& f, int (*degreesAt)(int y, int height))
{
    const int width = f.dst.width();
    const int height = f.dst.height();
    rows::anyOrderRuns(f.dst.extent(), [&](int top, int end) {
        pixels::widest([=, src = f.src, dst = f.dst] {
            for (int y = top; y < end; ++y) {
                pixels::mapColumns(src.row(y).data(), dst.row(y).data(), 0, width,
                    [hue = Hue(degreesAt(y, height))](int, Bgra p) {
                        const int most = std::max(std::max(p.r, p.g), p.b);
                        const int least = std::min(std::min(p.r, p.g), p.b);
                        const int low = kSaturation == Saturation::full ? 0 : least;
                        const int down =
                            ((most - low) * hue.share + kDegreesPerSector - 1) / kDegreesPerSector;
                        return pixels::fromWord(u32(most) << hue.most | u32(most - down) << hue.middle
                            | u32(low) << hue.least | u32(p.a) << 24);
                    });
            }
        });
    });
    return kAmOk;
}

i32 allHues(const Frame& f)
{
    return rainbow<Saturation::kept>(f, [](int y, int height) { return 360 * y / height; });
}

i32 warmHues(const Frame& f)
{
    return rainbow<Saturation::full>(f, [](int y, int height) { return 60 * (height - y) / height + 30; });
}

constexpr int kBits = 20;

// Shares of linear red, green and blue in X, Y and Z, in fixed point.
struct Weights {
    int r, g, b;
};
constexpr Weights kX{432490, 374950, 189190};
constexpr Weights kY{223000, 749900, 75620};
constexpr Weights kZ{20270, 124980, 996390};

constexpr int weighted(Bgra p, Weights w) { return (w.r * p.r + w.g * p.g + w.b * p.b) >> kBits; }

constexpr Bgra kWhite{255, 255, 255, 255};
constexpr int kWhiteX = weighted(kWhite, kX);
constexpr int kWhiteY = weighted(kWhite, kY);
constexpr int kWhiteZ = weighted(kWhite, kZ);

// CIE L*a*b* by tables of the CIE's f(t) in fixed point, t being relative to the X, Y and Z of a white pixel.
class Lab {
public:
    Lab()
    {
        fill(x_, kWhiteX);
        fill(y_, kWhiteY);
        fill(z_, kWhiteZ);
        for (std::size_t i = 0; i < y_.size(); ++i) {
            const int lightness = std::max(0, (116 * y_[i] - (16 << kBits)) >> kBits);
            flatF_[i] = float(flattened(lightness) + 16) / 116.0f;
        }
    }

    // Gives a pixel the lightness of flattened(); its a* and b* stay.
    Bgra flatten(Bgra p) const
    {
        const int fx = x_[std::size_t(weighted(p, kX))];
        const auto y = std::size_t(weighted(p, kY));
        const int fy = y_[y];
        const int fz = z_[std::size_t(weighted(p, kZ))];
        const int a = ((fx - fy) * 500) >> kBits;
        const int b = ((fy - fz) * 200) >> kBits;

        const float flat = flatF_[y];
        const float outX = linear(flat + float(a) / 500.0f);
        const float outY = linear(flat);
        const float outZ = linear(flat - float(b) / 200.0f);
        const auto channel = [=](float ofX, float ofY, float ofZ) {
            return u8(int(pixels::clamped(ofX * outX + ofY * outY + ofZ * outZ, 0.0f, 1.0f) * 255.0f + 0.5f));
        };
        // The inverse of the weights, for X, Y and Z relative to white.
        return {channel(0.052895f, -0.204026f, 1.151131f), channel(-0.921218f, 1.875861f, 0.045357f),
            channel(3.079918f, -1.537040f, -0.542877f), p.a};
    }

private:
    template <std::size_t kSize> static void fill(std::array<i32, kSize>& table, int white)
    {
        for (std::size_t i = 0; i < kSize; ++i) {
            const double t = double(i) / white;
            const double f = t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116;
            table[i] = pixels::roundHalfUp(f * (1 << kBits));
        }
    }

    // The new lightness of 0..100: it rises steeply and reaches 100 at 91.
    static int flattened(int lightness)
    {
        const double rest = std::max(0.0, 1 - lightness / 91.0);
        return pixels::truncated((1 - std::pow(rest, 1.36)) * 100) & 255;
    }

    static float linear(float f)
    {
        const float cube = f * f * f;
        return cube > 0.008856f ? cube : (f - 16.0f / 116.0f) / 7.787f;
    }

    std::array<i32, kWhiteX + 1> x_;
    std::array<i32, kWhiteY + 1> y_;
    std::array<i32, kWhiteZ + 1> z_;
    std::array<float, kWhiteY + 1> flatF_; ///< f of the new lightness, by the old Y
};

i32 aibao(const Frame& f)
{
    static const Lab lab;
    rows::map(f.src, f.dst, [table = &lab](Bgra p) { return table->flatten(p); });
    return kAmOk;
}

constexpr EffectRow kRows[] = {
    {.id = 86,
        .entry = {.place = 80, .name = "Rainbow", .guid = "B8418684-23EF-4e0d-94C4-6F5F3FA62666"},
        .shown = {.title = "Rainbow", .summary = "All hues from bottom to top."},
        .needsCopy = true,
        .apply = allHues},
    {.id = 87,
        .entry = {.place = 81, .name = "Aibao", .guid = "EE53FABA-42CD-486e-AAF7-A3549401CA9E"},
        .shown = {.title = "Aibao", .summary = "Flattened lightness with kept colours."},
        .needsCopy = true,
        .apply = aibao},
    {.id = 88,
        .entry = {.place = 82, .name = "Rainbow2", .guid = "986D9EB4-F480-4757-B661-10C87DB2EFCB"},
        .shown = {.title = "Warm Rainbow", .summary = "Pure warm hues from bottom to top."},
        .needsCopy = true,
        .apply = warmHues},
};
static_assert(isSound(kRows));

const Registered registered{Family::look, kRows};

} // namespace

} // namespace KEXSDK::am
