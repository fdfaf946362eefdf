// Night-vision goggles: two eyepieces, the mesh of the image tubes, sparks of single photons.
#include "noise.h"
#include "pieces.h"

namespace artwork {

namespace {

constexpr float kRadius = 0.455f;
constexpr Colour kPhosphor = rgb(90, 255, 130);

// How far a place lies outside the union of both eyepieces, whose notches are round; negative inside.
float outsideEyes(float x, float y, float apart)
{
    constexpr float kRounding = 0.05f;
    const float left = length(x + apart, y) - kRadius;
    const float right = length(x - apart, y) - kRadius;
    const float h = std::max(kRounding - std::abs(left - right), 0.0f) / kRounding;
    return std::min(left, right) - h * h * kRounding / 4;
}

// 1 on the borders of hexagons of this width.
float mesh(float x, float y, float width)
{
    const float rowHeight = width * 1.7320508f;
    const auto fromCentre = [&](float shiftX, float shiftY) {
        const float u = x + shiftX * width;
        const float v = y + shiftY * rowHeight;
        const float dx = std::abs(u - std::round(u / width) * width);
        const float dy = std::abs(v - std::round(v / rowHeight) * rowHeight);
        return std::max(dx, dx * 0.5f + dy * 0.8660254f);
    };
    const float toEdge = width / 2 - std::min(fromCentre(0, 0), fromCentre(0.5f, 0.5f));
    return smooth(0.16f, 0, toEdge / width);
}

void paintTube(const Place& p, float outside, Pixel& pixel)
{
    const float inside = smooth(0.01f, -0.05f, outside);
    cover(pixel, kBlack, 0.09f * mesh(p.x, p.y, 0.0135f) * inside);
    const int column = p.column / 2;
    const int row = p.row / 2;
    cover(pixel, kBlack, 0.13f * std::floor(hashed(column, row, 11) * 4) / 4 * inside);
    const float spark = hashed(column, row, 12);
    if (spark > 0.9985f)
        cover(pixel, kPhosphor, 0.65f * inside);
    else if (spark > 0.994f)
        cover(pixel, kPhosphor, 0.22f * inside);
}

void paintEyecup(const Place& p, float outside, Pixel& pixel)
{
    const float shade = smooth(-0.2f, 0.005f, outside);
    cover(pixel, kBlack, 0.8f * shade * shade);
    cover(pixel, kPhosphor, 0.14f * bell(outside + 0.012f, 0.009f));
    // Rubber, lit a little by the glow that it holds back, with the ridges of the cup.
    const float lit = 0.5f + 0.5f * noise(p.x * 2.2f, p.y * 2.2f, 5) + 0.35f * -p.y;
    const float ridge = 0.5f + 0.5f * std::cos(outside * 260);
    const float glow = bell(outside - 0.012f, 0.012f) * 0.20f
        + smooth(0.16f, 0.0f, outside) * (0.028f + 0.022f * ridge * ridge) * (0.4f + 0.6f * lit);
    cover(pixel, rgb(5, 8, 6) + rgb(70, 190, 95) * glow, smooth(-0.010f, 0.004f, outside));
}

} // namespace

void paintNightGlasses(Picture& picture)
{
    const float apart = picture.edge() - kRadius - 0.03f;
    picture.each([&](const Place& p, Pixel& pixel) {
        const float outside = outsideEyes(p.x, p.y, apart);
        paintTube(p, outside, pixel);
        paintEyecup(p, outside, pixel);
    });
}

} // namespace artwork
