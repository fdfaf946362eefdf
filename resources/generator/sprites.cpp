// Sprites of particles: white or nearly so, for particles bring their colour, clear at the border.
#include "drawing.h"
#include "noise.h"
#include "pieces.h"

namespace artwork {

namespace {

/// Paints white with opacity(distance from the middle in half heights, place).
template <class Opacity> void paintWhite(Picture& picture, Opacity opacity)
{
    picture.each([&](const Place& p, Pixel& pixel) {
        pixel = {kWhite, clamp01(opacity(2 * length(p.x, p.y), p))};
    });
}

/// A factor for opacity that falls to 0 at the border.
float rim(float distance) { return smooth(1.0f, 0.8f, distance); }

} // namespace

void paintDotSprite(Picture& picture)
{
    paintWhite(picture,
        [](float d, const Place&) { return rim(d) * (0.75f * bell(d, 0.16f) + 0.25f * bell(d, 0.4f)); });
}

void paintFlakeSprite(Picture& picture)
{
    const Plane arms = drawn(picture.size(), [](cairo_t* cairo) {
        cairo_set_line_width(cairo, 0.035);
        for (int arm = 0; arm < 6; ++arm) {
            const auto at = [&](float along, float across) {
                const float angle = float(arm) * kPi / 3;
                return std::pair{along * std::cos(angle) - across * std::sin(angle),
                    along * std::sin(angle) + across * std::cos(angle)};
            };
            const auto stroke = [&](float from, float to, float side) {
                const auto [x0, y0] = at(from, 0);
                const auto [x1, y1] = at(to, side);
                line(cairo, x0, y0, x1, y1);
                cairo_stroke(cairo);
            };
            stroke(0, 0.40f, 0);
            for (const float start : {0.16f, 0.27f})
                for (const float side : {-1.0f, 1.0f})
                    stroke(start, start + 0.09f, side * 0.09f);
        }
    });
    const Plane soft = blurred(arms, 0.02f);
    paintWhite(picture, [&](float d, const Place& p) {
        return rim(d) * (0.30f * bell(d, 0.38f) + 0.9f * soft.at(p.column, p.row));
    });
}

void paintDropSprite(Picture& picture)
{
    paintWhite(picture, [](float, const Place& p) {
        const float along = 2 * p.y; // thin above, full below
        return smooth(-1.0f, 0.5f, along) * smooth(0.98f, 0.75f, along) * bell(p.x, 0.14f)
            * rim(2 * std::abs(p.x));
    });
}

void paintSmokeSprite(Picture& picture)
{
    picture.each([](const Place& p, Pixel& pixel) {
        const float d = 2 * length(p.x, p.y);
        const float billow = clouds(p.x * 3.2f, p.y * 3.2f, 5, 404);
        const float body = smooth(0.95f, 0.15f, d - 0.30f * billow);
        // Lit from above.
        const float light =
            0.86f + 0.20f * clouds(p.x * 3.2f, p.y * 3.2f + 0.25f, 4, 404) - 0.20f * billow - 0.12f * p.y;
        pixel = {grey(clamp01(light)), clamp01(body * (0.75f + 0.5f * billow)) * rim(d)};
    });
}

void paintBubbleSprite(Picture& picture)
{
    picture.each([](const Place& p, Pixel& pixel) {
        const float d = 2 * length(p.x, p.y) / 0.94f;
        const float around = std::atan2(p.y, p.x) / (2 * kPi);
        const float film = smooth(1.0f, 0.97f, d);
        const float skin = 0.10f + 0.90f * d * d * d * d * d * d;
        // The film's colours run in bands along the rim.
        const Colour sheen = hued(around + 0.9f * d * d + 0.2f, 0.45f, 1);
        const float glint = 1.1f * bell(length(p.x + 0.20f, p.y + 0.23f), 0.045f)
            + 0.5f * bell(length(p.x - 0.24f, p.y - 0.24f), 0.025f);
        pixel = {mix(sheen, kWhite, clamp01(0.25f + glint)), clamp01(film * (skin * 0.9f + glint))};
    });
}

void paintPaperSprite(Picture& picture)
{
    picture.each([](const Place& p, Pixel& pixel) {
        const float outside = outsideBox(p.x, p.y, 0.44f, 0.44f, 0.03f);
        // A crease, so that turning pieces catch the light.
        const float light = 0.86f + 0.28f * (p.x - p.y) + 0.05f * grain(p.column / 2, p.row / 2, 77) * 0.5f;
        pixel = {grey(clamp01(light)), smooth(0.02f, 0.0f, outside)};
    });
}

void paintFlameSprite(Picture& picture)
{
    paintWhite(picture, [](float d, const Place& p) {
        const float lick = clouds(p.x * 4.5f, p.y * 4.5f, 4, 911);
        return rim(d) * smooth(0.9f, 0.0f, d - 0.45f * lick) * (0.65f + 0.6f * lick);
    });
}

void paintSparkSprite(Picture& picture)
{
    paintWhite(picture, [](float, const Place& p) {
        const float along = 2 * p.y; // the head is above
        const float tail = smooth(1.0f, -0.6f, along) * smooth(-1.0f, -0.8f, along);
        return tail * tail * (0.8f * bell(p.x, 0.09f) + 0.3f * bell(p.x, 0.22f)) * rim(2 * std::abs(p.x));
    });
}

void paintStarSprite(Picture& picture)
{
    paintWhite(picture, [](float d, const Place& p) {
        const auto beam = [](float along, float across) {
            return bell(across, 0.012f + 0.006f * (1 - along)) * smooth(1.0f, 0.05f, 2 * along);
        };
        const float cross = beam(std::abs(p.x), p.y) + beam(std::abs(p.y), p.x);
        const float turnedX = 0.7071068f * (p.x + p.y);
        const float turnedY = 0.7071068f * (p.x - p.y);
        const float diagonal = beam(std::abs(turnedX) * 2, turnedY) + beam(std::abs(turnedY) * 2, turnedX);
        return rim(d) * (cross + 0.5f * diagonal + 0.8f * bell(d, 0.08f) + 0.22f * bell(d, 0.3f));
    });
}

} // namespace artwork
