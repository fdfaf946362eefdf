// A telescopic sight: tube, coated glass, and a reticle with mil dots.
#include "drawing.h"
#include "noise.h"
#include "pieces.h"

namespace artwork {

namespace {

constexpr float kRadius = 0.468f;
constexpr float kMil = 0.04f;

void drawPosts(cairo_t* cairo)
{
    constexpr float kFrom = 0.285f;
    constexpr float kWidth = 0.0062f;
    for (int turn = 0; turn < 4; ++turn) {
        cairo_rotate(cairo, double(kPi) / 2);
        cairo_move_to(cairo, kFrom, -0.0012);
        cairo_line_to(cairo, kFrom + 0.014, -double(kWidth));
        cairo_line_to(cairo, 0.5, -double(kWidth));
        cairo_line_to(cairo, 0.5, double(kWidth));
        cairo_line_to(cairo, kFrom + 0.014, double(kWidth));
        cairo_line_to(cairo, kFrom, 0.0012);
        cairo_close_path(cairo);
    }
    cairo_fill(cairo);
}

void drawReticle(cairo_t* cairo)
{
    drawPosts(cairo);
    cairo_set_line_width(cairo, 0.0021);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_BUTT);
    for (const float side : {-1.0f, 1.0f}) {
        line(cairo, side * 0.012f, 0, side * 0.3f, 0);
        line(cairo, 0, side * 0.012f, 0, side * 0.3f);
    }
    cairo_stroke(cairo);
    for (int mil = 1; mil <= 6; ++mil)
        for (const float side : {-1.0f, 1.0f}) {
            const float at = side * kMil * float(mil);
            circle(cairo, at, 0, 0.0047f);
            circle(cairo, 0, at, 0.0047f);
        }
    cairo_fill(cairo);
    for (int half = 0; half < 7; ++half)
        for (const float side : {-1.0f, 1.0f}) {
            const float at = side * kMil * (float(half) + 0.5f);
            line(cairo, at, -0.0052f, at, 0.0052f);
            line(cairo, -0.0052f, at, 0.0052f, at);
        }
    cairo_stroke(cairo);
    // Figures of the hold below the middle.
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_width(cairo, 0.0018);
    for (const auto& [text, mil] : {std::pair{"2", 2.0f}, {"4", 4.0f}, {"6", 6.0f}})
        strokeText(cairo, text, 0.014f, kMil * mil - 0.0075f, 0.015f);
    // Heights of a standing figure at several ranges, to be laid along the horizon.
    for (int range = 0; range < 5; ++range) {
        const float x = -0.265f + float(range) * 0.033f;
        const float height = 0.075f / (1 + 0.55f * float(range));
        line(cairo, x, 0.165f - height, x + 0.018f, 0.165f - height);
    }
    line(cairo, -0.275f, 0.165f, -0.095f, 0.165f);
    cairo_stroke(cairo);
}

void paintGlass(const Place& p, Pixel& pixel)
{
    const float from = length(p.x, p.y);
    const float angle = std::atan2(p.y, p.x);
    // The coating shows as a violet crescent above left and a green one below right.
    const float crescent = bell(from - kRadius + 0.035f, 0.022f);
    const float aboveLeft = smooth(0.3f, 1, -std::sin(angle + 0.75f));
    const float belowRight = smooth(0.55f, 1, std::sin(angle + 0.75f));
    cover(pixel, rgb(150, 130, 235), 0.30f * crescent * aboveLeft);
    cover(pixel, rgb(120, 200, 150), 0.20f * crescent * belowRight);
    const float shade = smooth(kRadius - 0.15f, kRadius, from);
    cover(pixel, kBlack, 0.85f * shade * shade);
}

void paintTube(const Place& p, Pixel& pixel)
{
    const float outside = length(p.x, p.y) - kRadius;
    const float angle = std::atan2(p.y, p.x);
    const float lit = 0.5f + 0.5f * std::sin(-angle * 2 + 0.6f);
    const float thread = 0.5f + 0.5f * std::cos(outside * 420);
    const float metal = bell(outside - 0.007f, 0.004f) * (0.10f + 0.30f * lit)
        + smooth(0.1f, 0, outside) * thread * (0.012f + 0.035f * lit) + 0.004f * grain(p.column, p.row, 3);
    cover(pixel, rgb(5, 5, 6) + rgb(150, 155, 165) * std::max(metal, 0.0f), smooth(-0.004f, 0.003f, outside));
}

} // namespace

void paintSight(Picture& picture)
{
    picture.each([](const Place& p, Pixel& pixel) { paintGlass(p, pixel); });
    const Plane reticle = drawn(picture.size(), drawReticle);
    cover(picture, blurred(reticle, 0.003f), rgb(230, 235, 230), 0.30f); // lifts the lines off dark pictures
    cover(picture, reticle, rgb(8, 8, 8), 0.97f);
    picture.each([](const Place& p, Pixel& pixel) {
        const float from = length(p.x, p.y);
        cover(pixel, rgb(255, 40, 30), 0.5f * bell(from, 0.006f) + 0.5f * smooth(0.0042f, 0.0028f, from));
        paintTube(p, pixel);
    });
}

} // namespace artwork
