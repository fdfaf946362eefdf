// A wooden Venetian blind, half open, before a window frame.
#include "noise.h"
#include "pieces.h"

namespace artwork {

namespace {

constexpr float kPitch = 1.0f / 12;
constexpr float kOpen = 0.50f; // share of the pitch that one looks through
constexpr float kRail = 0.045f;

struct Slat {
    int number;
    float across; ///< 0 at the upper edge, 1 at the lower one; beyond 1 is the gap
};

Slat slatAt(const Place& p)
{
    // Blinds never hang quite straight.
    const float number = (p.y + 0.5f - kRail) / kPitch;
    const float sag = 0.05f * noise(p.x * 0.9f, std::floor(number) * 7.7f, 21);
    const float tilt = (hashed(int(std::floor(number + sag)), 0, 22) - 0.5f) * 0.05f * p.x;
    const float at = number + sag + tilt;
    return {int(std::floor(at)), (at - std::floor(at)) / (1 - kOpen)};
}

Colour wood(const Place& p, const Slat& slat)
{
    const float veins = clouds(p.x * 3 + float(slat.number) * 9, p.y * 90, 4, 23);
    const Colour tone = mix(rgb(52, 31, 18), rgb(96, 60, 34), 0.5f + 0.5f * veins);
    // Bowed: light from the window on the upper edge, shade below.
    const float light = 0.45f + 1.1f * bell(slat.across - 0.16f, 0.13f) - 0.3f * slat.across;
    return tone * std::max(light, 0.15f);
}

void paintSlat(const Place& p, Pixel& pixel)
{
    const Slat slat = slatAt(p);
    const float edge = 0.02f;
    const float mask = smooth(0, edge * 2, slat.across) * smooth(1, 1 - edge * 2, slat.across);
    // Light wraps around both edges.
    const float gap = slat.across > 1 ? (slat.across - 1) / (kOpen / (1 - kOpen)) : 0;
    const float haze = slat.across > 1 ? bell(gap, 0.16f) + bell(gap - 1, 0.10f) : 0;
    cover(pixel, rgb(255, 226, 170), 0.13f * haze);
    cover(pixel, wood(p, slat), 0.96f * mask);
}

void paintCords(const Place& p, float edge, Pixel& pixel)
{
    for (const float side : {-0.62f, 0.62f}) {
        const float x = p.x - side * edge;
        const float twist = 0.5f + 0.5f * std::sin(p.y * 900 + x * 500);
        cover(pixel, kBlack, 0.5f * bell(x - 0.0035f, 0.003f));
        cover(pixel, rgb(214, 196, 160) * (0.6f + 0.4f * twist), smooth(0.0036f, 0.0024f, std::abs(x)));
    }
}

void paintRails(const Place& p, float edge, Pixel& pixel)
{
    const auto rail = [&](float inside, float width, float seed) {
        const float veins = clouds(p.x * 2.5f, p.y * 60 + seed, 4, 24);
        const float bevel = 0.5f + 0.9f * bell(inside + width * 0.85f, width * 0.18f);
        cover(pixel, kBlack, 0.6f * smooth(0.03f, 0, inside) * smooth(-0.001f, 0.001f, inside));
        cover(pixel, mix(rgb(48, 28, 17), rgb(84, 52, 30), 0.5f + 0.5f * veins) * bevel,
            smooth(0.0012f, -0.0012f, inside));
    };
    rail(0.5f + p.y - kRail, kRail, 0);
    rail(0.5f - p.y - kRail * 0.55f, kRail * 0.55f, 9);
    // The sides of the window lie in shade.
    cover(pixel, rgb(16, 11, 8), 0.85f * smooth(0.03f, 0.008f, edge - std::abs(p.x)));
}

} // namespace

void paintWindowShades(Picture& picture)
{
    const float edge = picture.edge();
    picture.each([&](const Place& p, Pixel& pixel) {
        paintSlat(p, pixel);
        paintCords(p, edge, pixel);
        paintRails(p, edge, pixel);
    });
}

} // namespace artwork
