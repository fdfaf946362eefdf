// Light: rays, flares, lamps out of focus, leaks, a prism, a window.
#include "pieces.h"
#include "surfaces.h"

namespace artwork {

namespace {

// Rays about a point: unequal beams, 0..1, a function of the angle that closes around the circle.
float beams(float angle, float fineness, std::uint32_t seed)
{
    const float x = std::cos(angle) * fineness;
    const float y = std::sin(angle) * fineness;
    return clamp01(0.5f + 0.75f * clouds(x, y, 4, seed));
}

// How far a place lies outside a regular hexagon of this radius, in heights.
float outsideHexagon(float x, float y, float radius, float turn)
{
    const float u = std::cos(turn) * x - std::sin(turn) * y;
    const float v = std::sin(turn) * x + std::cos(turn) * y;
    const float ax = std::abs(u);
    const float ay = std::abs(v);
    return std::max(ax, ax * 0.5f + ay * 0.8660254f) - radius;
}

} // namespace

// The sun behind the upper left corner, for adding.
void paintSunRays(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float dx = p.x + edge * 1.02f;
        const float dy = p.y + 0.60f;
        const float far = length(dx, dy);
        const float angle = std::atan2(dy, dx);
        const float broad = beams(angle, 5.5f, 231);
        const float fine = beams(angle, 19, 232);
        const float ray = broad * broad * (0.55f + 0.45f * fine);
        const float dust = 0.85f + 0.3f * clouds(p.x * 5, p.y * 5, 4, 233);
        const float reach = std::exp(-far * 1.35f) * smooth(1.9f, 0.5f, far);
        const Colour warm = mix(rgb(255, 232, 178), rgb(255, 168, 84), smooth(0.2f, 1.5f, far));
        return warm * (1.25f * ray * reach * dust) + rgb(255, 226, 170) * (0.85f * bell(far, 0.24f))
            + rgb(255, 190, 120) * (0.10f * std::exp(-far * 1.1f));
    });
}

// A lamp in the lens with its streak, its star and the ghosts opposite, for adding.
void paintLensFlare(Picture& picture)
{
    const float edge = picture.edge();
    const float lampX = edge * 0.62f;
    const float lampY = -0.31f;
    struct Ghost {
        float along; ///< 0 at the lamp, 1 in the middle, 2 opposite
        float radius;
        float strength;
        Colour colour;
    };
    const Ghost ghosts[] = {{0.46f, 0.030f, 0.20f, rgb(120, 255, 180)},
        {0.72f, 0.062f, 0.10f, rgb(110, 150, 255)}, {1.22f, 0.022f, 0.22f, rgb(255, 190, 110)},
        {1.40f, 0.086f, 0.11f, rgb(255, 120, 150)}, {1.70f, 0.046f, 0.16f, rgb(120, 230, 255)},
        {2.05f, 0.135f, 0.10f, rgb(170, 130, 255)}, {2.22f, 0.034f, 0.15f, rgb(255, 226, 150)}};
    paint(picture, [&](const Place& p) {
        const float dx = p.x - lampX;
        const float dy = p.y - lampY;
        const float far = length(dx, dy);
        const float spikes = beams(std::atan2(dy, dx), 9, 241);
        Colour light = rgb(255, 250, 240) * (1.05f * bell(far, 0.020f));
        light = light + rgb(190, 210, 255) * (0.26f * bell(far, 0.09f) + 0.14f * std::exp(-far * 3.6f));
        light = light + rgb(255, 240, 220) * (0.75f * spikes * spikes * spikes * std::exp(-far * 6.5f));
        light = light + rgb(110, 170, 255) * (0.62f * bell(dy, 0.0045f) * std::exp(-std::abs(dx) * 1.6f));
        light = light + rgb(80, 130, 255) * (0.15f * bell(dy, 0.02f) * std::exp(-std::abs(dx) * 1.2f));
        // A halo split into its colours.
        const float halo = (far - 0.315f) / 0.016f;
        light = light + hued(clamp01(0.42f - 0.16f * halo), 0.75f, 1) * (0.11f * bell(halo, 1));
        for (const Ghost& ghost : ghosts) {
            const float gx = p.x - lampX * (1 - ghost.along);
            const float gy = p.y - lampY * (1 - ghost.along);
            const float outside = outsideHexagon(gx, gy, ghost.radius, 0.3f);
            const float disc = smooth(0.004f, -0.004f, outside);
            const float rim = bell(outside + 0.004f, 0.005f);
            light = light + ghost.colour * (ghost.strength * (0.62f * disc + 0.45f * rim));
        }
        return light;
    });
}

// Lamps out of focus, for the dodging blend: a middle value doubles the light there, so lamps stay below it.
void paintBokeh(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float glow = 0.5f + 0.5f * clouds(p.x * 1.3f, p.y * 1.3f, 3, 251);
        return rgb(58, 36, 44) * (glow * (0.6f + 0.8f * smooth(-0.2f, 0.5f, p.y)));
    });
    Random random(252);
    for (int i = 0; i < 74; ++i) {
        const float x = random.uniform(-edge * 1.05f, edge * 1.05f);
        // Most lamps stand low, and few stand in the middle.
        const float low = random.uniform(0.35f, 1.0f);
        const float y = 0.52f - low * random.uniform();
        const float radius = random.uniform(0.022f, 0.088f);
        const float soft = random.uniform(0.004f, 0.016f);
        const float middle = bell(length(x / edge, y * 2), 0.42f);
        const float strength = random.uniform(0.07f, 0.30f) * (1 - 0.7f * middle);
        const float pick = random.uniform();
        const float hue = pick < 0.62f ? random.uniform(0.02f, 0.13f)
            : pick < 0.82f             ? random.uniform(0.86f, 0.97f)
                                       : random.uniform(0.50f, 0.62f);
        const Colour colour = hued(hue, random.uniform(0.35f, 0.75f), 1);
        const float turn = random.uniform(-0.1f, 0.1f);
        picture.each([&](const Place& p, Pixel& pixel) {
            if (std::abs(p.x - x) > radius * 1.3f || std::abs(p.y - y) > radius * 1.3f)
                return;
            // The blades of the iris, almost round.
            const float round = length(p.x - x, p.y - y) - radius;
            const float outside = mix(round, outsideHexagon(p.x - x, p.y - y, radius * 0.93f, turn), 0.35f);
            const float disc = smooth(soft, -soft, outside);
            const float rim = bell(outside + soft, soft * 1.4f);
            pixel.colour = pixel.colour
                + colour
                    * (strength * (disc * (0.72f + 0.2f * bell(outside + radius, radius)) + 0.38f * rim));
        });
    }
    picture.each([](const Place&, Pixel& pixel) {
        // Where lamps overlap they saturate gently.
        const auto held = [](float v) { return 0.62f * (1 - std::exp(-v / 0.62f)); };
        pixel.colour = {held(pixel.colour.r), held(pixel.colour.g), held(pixel.colour.b)};
    });
}

// Light that fell through the back of a camera, for the screen blend.
void paintLightLeak(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float drift = clouds(p.x * 0.9f, p.y * 1.3f, 4, 261);
        const float fromRight = edge - p.x + 0.16f * drift + 0.10f * p.y;
        const float fromLeft = p.x + edge + 0.13f * drift - 0.14f * p.y;
        const float streak = p.x - 0.30f * edge - 0.22f * p.y + 0.04f * drift;
        Colour light = rgb(255, 70, 24) * (0.72f * std::exp(-fromRight * 3.1f));
        light = light + rgb(255, 150, 40) * (0.50f * bell(fromRight - 0.05f, 0.15f));
        light = light + rgb(255, 238, 190) * (0.50f * bell(fromRight + 0.03f, 0.07f));
        light = light + rgb(200, 30, 110) * (0.42f * std::exp(-fromLeft * 3.4f));
        light = light + rgb(255, 96, 60) * (0.20f * bell(streak, 0.055f) * smooth(-0.5f, 0.3f, p.y));
        light = light + rgb(36, 18, 40) * (0.4f + 0.4f * drift);
        return light * (0.94f + 0.12f * drift);
    });
}

// Colours of a prism, for the linear-light blend: the middle grey changes nothing, and a little is much.
void paintPrism(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float drift = clouds(p.x * 0.8f, p.y * 0.8f, 3, 271);
        const float side = p.x / edge;
        Colour light = mix(rgb(108, 127, 146), rgb(148, 128, 112), smooth(-0.9f, 0.9f, side + 0.5f * drift));
        const auto rainbow = [&](float across, float width, float strength) {
            const float at = across / width;
            const Colour spectrum = hued(0.42f - 0.42f * at, 0.9f, 1) + grey(-0.42f);
            light = light + spectrum * (strength * bell(at, 0.42f));
        };
        const float bent = 0.10f * std::sin(p.y * 2.6f + 0.6f);
        rainbow(p.x * 0.86f + p.y * 0.5f + edge * 0.48f + bent, 0.105f, 0.14f);
        rainbow(p.x * 0.90f + p.y * 0.44f - edge * 0.55f - bent, 0.060f, 0.11f);
        rainbow(p.x * 0.80f + p.y * 0.60f - edge * 0.74f, 0.028f, 0.10f);
        const float beam = p.x * 0.86f + p.y * 0.5f + edge * 0.34f + bent;
        light = light + grey(0.09f * bell(beam, 0.05f));
        return light + grey(-0.085f * smooth(0.45f, 1.05f, towardCorner(p, edge)));
    });
}

namespace {

void drawPanes(cairo_t* cairo, float edge)
{
    // The light falls slanting.
    const cairo_matrix_t slant{1.0, 0.16, -0.34, 0.95, edge * 0.06, 0.0};
    cairo_transform(cairo, &slant);
    for (int column = -1; column <= 1; ++column)
        for (int row = -1; row <= 1; ++row)
            roundedBox(cairo, float(column) * 0.52f, float(row) * 0.42f, 0.245f, 0.195f, 0.003f);
    cairo_fill(cairo);
}

void drawLeaves(cairo_t* cairo, float edge)
{
    Random random(281);
    for (int i = 0; i < 95; ++i) {
        const float x = edge * random.uniform(0.05f, 1.15f);
        const float high = random.uniform();
        const float y = -0.55f + 0.75f * high * random.uniform();
        const float scale = random.uniform(0.030f, 0.062f);
        cairo_save(cairo);
        cairo_translate(cairo, x, y);
        cairo_rotate(cairo, random.uniform(0.4f, 2.4f));
        cairo_scale(cairo, scale, scale);
        cairo_move_to(cairo, -1, 0);
        cairo_curve_to(cairo, -0.4, -0.5, 0.4, -0.45, 1.1, 0);
        cairo_curve_to(cairo, 0.4, 0.45, -0.4, 0.5, -1, 0);
        cairo_restore(cairo);
        cairo_fill(cairo);
    }
}

} // namespace

// The sun through panes and leaves onto a wall, for the soft-light blend.
void paintWindowLight(Picture& picture)
{
    const Size size = picture.size();
    const float edge = picture.edge();
    const Plane panes = blurred(drawn(size, [&](cairo_t* cairo) { drawPanes(cairo, edge); }), 0.0075f);
    const Plane leaves = blurred(drawn(size, [&](cairo_t* cairo) { drawLeaves(cairo, edge); }), 0.012f);
    paint(picture, [&](const Place& p) {
        const float wall = 0.02f * clouds(p.x * 7, p.y * 7, 5, 282);
        const float shade = smooth(0.3f, 1.1f, towardCorner(p, edge));
        const float sun = panes.at(p.column, p.row) * (1 - 0.72f * leaves.at(p.column, p.row));
        return mix(rgb(92, 94, 108) * (1 - 0.18f * shade), rgb(214, 188, 150), sun) + grey(wall);
    });
}

} // namespace artwork
