// Wipe pictures that open around the middle: hands of a clock, rings, and outlines that grow.
#include "pieces.h"
#include "wipes.h"

namespace artwork {

void paintClockWipe(Picture& picture) { paintOrder(picture, turnOf); }

void paintDoubleClockWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) { return fraction(2 * turnOf(p)); });
}

void paintCircleOutWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) { return length(p.x, p.y); });
}

void paintCircleInWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) { return -length(p.x, p.y); });
}

void paintDiamondWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) { return std::abs(p.x) + std::abs(p.y); });
}

// A box of the picture's shape. Its corners are a trace late, or each outline would be of a single value.
void paintBoxWipe(Picture& picture)
{
    const float edge = picture.edge();
    paintOrder(picture, [edge](const Place& p) {
        return std::max(std::abs(p.x) / edge, std::abs(p.y) * 2) + 0.002f * length(p.x, p.y);
    });
}

// Copies of one outline around its own middle: a circle whose halves are pushed up along both sides.
void paintHeartWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) {
        const float x = std::abs(p.x);
        const float y = 0.07f - p.y;
        return length(x, 1.15f * y - 0.8f * x);
    });
}

void paintStarWipe(Picture& picture)
{
    constexpr float kSector = kPi / 5; // from a point to the notch beside it
    constexpr float kNotch = 0.45f;    // how far the notches lie from the middle, points lie at 1
    // The edge from the point (1, 0) to the notch, as the normal of its line.
    const float notchX = kNotch * std::cos(kSector);
    const float notchY = kNotch * std::sin(kSector);
    const float normalX = notchY;
    const float normalY = 1 - notchX;
    paintOrder(picture, [=](const Place& p) {
        const float y = p.y - 0.02f;
        const float angle = std::abs(std::atan2(p.x, -y)); // from the upper point
        const float toPoint = std::abs(angle - std::round(angle / (2 * kSector)) * 2 * kSector);
        const float r = length(p.x, y);
        return r * (std::cos(toPoint) * normalX + std::sin(toPoint) * normalY);
    });
}

// One arm that winds outward, and fills the picture along its own way.
void paintSpiralWipe(Picture& picture)
{
    constexpr float kArm = 0.23f;
    paintOrder(picture, [](const Place& p) {
        const float turn = turnOf(p);
        const float along = length(p.x, p.y) / kArm - turn;
        return std::floor(along) + turn + 0.12f * fraction(along);
    });
}

// Twelve blades that open one a little after the other.
void paintRadialFanWipe(Picture& picture)
{
    constexpr float kBlades = 12;
    paintOrder(picture, [](const Place& p) {
        const float blades = turnOf(p) * kBlades;
        return fraction(blades) + 0.06f * std::floor(blades);
    });
}

// Rings on water: those before the front rise early.
void paintRipplesWipe(Picture& picture)
{
    constexpr float kRings = 9;
    paintOrder(picture, [](const Place& p) {
        const float r = length(p.x, p.y);
        return r + 0.055f * std::sin(2 * kPi * r * kRings);
    });
}

} // namespace artwork
