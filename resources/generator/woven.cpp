// A frame of basket weave with a plaited rim.
#include "drawing.h"
#include "noise.h"
#include "pieces.h"

namespace artwork {

namespace {

constexpr float kBorder = 0.125f;
constexpr float kStrand = 0.0265f;
constexpr float kRim = 0.0135f;
constexpr float kCorner = 0.03f;
constexpr float kLaps = 150;

// A strand seen from above: round across, dipping under its neighbours at both ends.
Colour strand(float along, float across, float id, float fibreX, float fibreY)
{
    const float round = std::sqrt(std::max(0.0f, 1 - across * across));
    const float rise = std::cos(along * kPi / 2);
    const float fibres = 0.5f + 0.5f * clouds(fibreX, fibreY, 3, 41);
    const Colour straw = mix(rgb(186, 138, 78), rgb(226, 186, 120), id) * (0.78f + 0.3f * fibres);
    const float light =
        0.22f + 0.55f * round * (0.45f + 0.55f * rise) + 0.25f * bell(across + 0.35f, 0.3f) * rise;
    return straw * light;
}

Colour basket(const Place& p)
{
    const float u = p.x / kStrand;
    const float v = p.y / kStrand;
    const int column = int(std::floor(u));
    const int row = int(std::floor(v));
    const float alongX = (u - float(column)) * 2 - 1;
    const float alongY = (v - float(row)) * 2 - 1;
    const bool lying = (column + row) % 2 == 0;
    // A strand has one colour wherever it comes up.
    return lying ? strand(alongX * 0.97f, alongY * 1.06f, hashed(0, row, 42), p.x * 30, p.y * 400)
                 : strand(alongY * 0.97f, alongX * 1.06f, hashed(column, 1, 42), p.x * 400, p.y * 30);
}

// The way around a box with round corners, clockwise from the middle of its top, as a share of the whole.
float wayAround(float x, float y, float halfWidth, float halfHeight, float corner)
{
    const float a = halfWidth - corner;
    const float b = halfHeight - corner;
    const float quarter = kPi / 2 * corner;
    const auto turned = [&](float across, float along) { return corner * std::atan2(across, along); };
    float way = 0;
    if (y < -b)
        way = x >= a ? a + turned(x - a, -y - b) : x > -a ? x : -a - turned(-x - a, -y - b);
    else if (y > b)
        way = 2 * b + 2 * quarter
            + (x >= a        ? a - turned(x - a, y - b)
                    : x > -a ? 2 * a - x
                             : 3 * a + turned(-x - a, y - b));
    else
        way = x > 0 ? a + quarter + y + b : -a - quarter - y - b;
    const float whole = 4 * (a + b + quarter);
    return way / whole - std::floor(way / whole);
}

// Two cords around each other; `turn` counts the laps along the rim.
Colour plait(float across, float turn)
{
    const float shifted = turn + across * 0.55f;
    const float lap = shifted - std::floor(shifted);
    const float round = std::sqrt(std::max(0.0f, 1 - across * across));
    const float cord = std::sin(lap * kPi);
    return mix(rgb(150, 102, 52), rgb(222, 178, 110), 0.2f + 0.8f * cord * round)
        * (0.35f + 0.65f * std::sqrt(cord) * (0.4f + 0.6f * round));
}

} // namespace

void paintWoven(Picture& picture)
{
    const float edge = picture.edge();
    const auto outside = [&](const Place& p, float border) {
        return outsideBox(p.x, p.y, edge - border, 0.5f - border, kCorner);
    };
    picture.each([&](const Place& p, Pixel& pixel) {
        const float frame = outside(p, kBorder);
        const float lit = outside({p.x - 0.008f, p.y - 0.010f, 0, 0}, kBorder);
        cover(pixel, rgb(18, 10, 4), 0.75f * smooth(-0.05f, 0.006f, lit));
        cover(pixel, basket(p), smooth(-0.001f, 0.001f, frame));
        cover(pixel, kBlack, 0.55f * bell(frame - 0.006f, 0.014f) * smooth(-0.001f, 0.001f, frame));
        const float across = (frame - kRim * 0.4f) / kRim;
        const float way = wayAround(p.x, p.y, edge - kBorder, 0.5f - kBorder, kCorner);
        cover(pixel, plait(across, way * kLaps), smooth(1, 0.93f, std::abs(across)));
        const float rest = std::min(edge - std::abs(p.x), 0.5f - std::abs(p.y));
        cover(pixel, kBlack, 0.5f * smooth(0.02f, 0, rest));
    });
}

} // namespace artwork
