// Explosions of colour, rays and bubbles for the overlay blend: the middle grey leaves the picture.
#include "pieces.h"
#include "surfaces.h"

namespace artwork {

namespace {

constexpr Colour kNeutral = grey(0.5f);

// Powder thrown outward: density 0..1 about a point, with billows, jets and grains.
float powder(const Place& p, float x, float y, float reach, std::uint32_t seed)
{
    const float dx = p.x - x;
    const float dy = p.y - y;
    const float far = length(dx, dy);
    const float angle = std::atan2(dy, dx);
    // Noise that is stretched away from the point.
    const float u = std::cos(angle) * 2.6f;
    const float v = std::sin(angle) * 2.6f;
    const float jets = clouds(u + far * 0.8f, v + far * 0.8f, 5, seed);
    const float billows = clouds(p.x * 6, p.y * 6, 6, seed + 50);
    const float outline = reach * (1 + 0.62f * jets) + 0.085f * billows;
    const float body = smooth(outline, outline * 0.25f, far);
    const float folds = 0.74f + 0.52f * billows;
    const float grains = smooth(0.62f, 0.95f, hashed(p.column / 2, p.row / 2, seed + 90))
        * smooth(outline * 1.5f, outline * 0.8f, far) * 0.5f;
    return clamp01(body * folds + grains * (1 - body));
}

struct Puff {
    float x, y; ///< place, in shares of half the sides
    float reach;
    Colour colour;
};

void paintPuffs(Picture& picture, std::initializer_list<Puff> puffs, std::uint32_t seed)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place&) { return kNeutral; });
    for (const Puff& puff : puffs) {
        seed += 200;
        picture.each([&](const Place& p, Pixel& pixel) {
            const float density = powder(p, puff.x * edge, puff.y * 0.5f, puff.reach, seed);
            cover(pixel, puff.colour * (0.80f + 0.40f * density), 0.92f * density);
        });
    }
}

// Thin lines of light away from a point, 0..1.
float streaks(float angle, float far, int count, std::uint32_t seed)
{
    const float turn = (angle / (2 * kPi) + 0.5f) * float(count);
    const int index = int(std::floor(turn));
    const float across = turn - float(index) - 0.5f;
    const float from = 0.10f + 0.35f * hashed(index, 1, seed);
    const float reach = from + 0.15f + 0.7f * hashed(index, 2, seed) * hashed(index, 3, seed);
    const float width = 0.06f + 0.22f * hashed(index, 4, seed);
    return bell(across, width) * smooth(from, from + 0.1f, far) * smooth(reach, mix(from, reach, 0.6f), far);
}

} // namespace

// The powder of a spring festival, from all sides.
void paintColourPowder(Picture& picture)
{
    paintPuffs(picture,
        {{-0.95f, -0.50f, 0.46f, rgb(250, 60, 130)}, {-0.35f, -1.05f, 0.34f, rgb(255, 200, 40)},
            {0.45f, -1.00f, 0.38f, rgb(60, 210, 120)}, {1.00f, -0.35f, 0.46f, rgb(50, 150, 255)},
            {0.80f, 0.85f, 0.44f, rgb(170, 80, 250)}, {0.00f, 1.15f, 0.36f, rgb(255, 90, 60)},
            {-0.80f, 0.90f, 0.44f, rgb(255, 160, 40)}, {-1.10f, 0.25f, 0.28f, rgb(60, 220, 220)}},
        301);
}

// One burst of blue behind the picture's middle, with sparks.
void paintBluePowder(Picture& picture)
{
    paint(picture, [&](const Place& p) {
        const float far = length(p.x, p.y);
        const float angle = std::atan2(p.y, p.x);
        const float body = powder(p, 0, 0.02f, 0.56f, 302) * smooth(-0.05f, 0.34f, far);
        const float core = bell(far, 0.17f);
        const float hue =
            0.60f + 0.07f * clouds(p.x * 2.2f, p.y * 2.2f, 4, 303) + 0.03f * std::sin(angle * 3);
        const Colour cloud = hued(hue, 0.80f - 0.45f * core, 0.70f + 0.25f * body);
        const Colour around = rgb(62, 72, 104) * (1 + 0.12f * clouds(p.x * 2, p.y * 2, 4, 304));
        const float sparks = streaks(angle, far, 110, 305) + 0.6f * streaks(angle, far, 260, 306);
        return mix(around, cloud, body)
            + rgb(150, 200, 255) * (0.42f * clamp01(sparks) * smooth(0.10f, 0.40f, far) + 0.07f * core);
    });
}

// Rays out of a bright middle, as at great speed.
void paintRadialBurst(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float far = length(p.x, p.y);
        const float angle = std::atan2(p.y, p.x);
        const auto ray = [&](float fineness, std::uint32_t seed) {
            return clouds(std::cos(angle) * fineness, std::sin(angle) * fineness, 4, seed);
        };
        const float rays = ray(7, 311) + 0.6f * ray(26, 312);
        const float open = smooth(0.10f, 0.55f, far);
        const float light = 0.60f - 0.20f * smooth(0.05f, 1.0f, towardCorner(p, edge)) + 0.30f * rays * open
            + 0.30f * bell(far, 0.20f);
        const float corner = smooth(0.50f, 1.08f, towardCorner(p, edge));
        const Colour tint = mix(rgb(255, 232, 196), rgb(206, 224, 255), smooth(0.08f, 0.75f, far));
        return tint * (clamp01(light) * (1 - 0.42f * corner) * 1.04f);
    });
}

namespace {

void addBubble(Picture& picture, float x, float y, float radius, std::uint32_t seed)
{
    const float pixel = 1 / float(picture.size().height);
    picture.each([&](const Place& p, Pixel& out) {
        const float dx = (p.x - x) / radius;
        const float dy = (p.y - y) / radius;
        if (std::abs(dx) > 1.1f || std::abs(dy) > 1.1f)
            return;
        const float from = length(dx, dy);
        const float inside = smooth(1 + pixel / radius, 1 - pixel / radius, from);
        const float rim = smooth(0.55f, 1.0f, from);
        // A film of soap: colours that run around the rim.
        const float film =
            0.6f * from + 0.22f * std::atan2(dy, dx) / kPi + 0.15f * noise(dx * 2, dy * 2, seed);
        const Colour rainbow = hued(film * 1.7f + hashed(int(seed), 0, 9), 0.55f, 1);
        const float window = smooth(0.20f, 0.10f, std::abs(from - 0.70f))
            * smooth(0.55f, 0.25f, std::abs(std::atan2(dy, dx) + 2.2f));
        const float below = smooth(0.10f, 0.04f, std::abs(from - 0.80f))
            * smooth(0.42f, 0.18f, std::abs(std::atan2(dy, dx) - 0.9f));
        const Colour light =
            rainbow * (0.42f * rim * rim) + kWhite * (0.40f * window + 0.30f * below) + grey(0.03f);
        out.colour = out.colour + light * inside + grey(-0.10f * rim * inside);
    });
}

void addStar(Picture& picture, float x, float y, float size, float strength)
{
    picture.each([&](const Place& p, Pixel& out) {
        const float dx = std::abs(p.x - x) / size;
        const float dy = std::abs(p.y - y) / size;
        if (dx > 3.5f || dy > 3.5f)
            return;
        const float far = length(dx, dy);
        const float cross = std::exp(-dx * 1.4f - dy * 26) + std::exp(-dy * 1.4f - dx * 26);
        const float u = std::abs(dx - dy) * 0.7071f;
        const float v = (dx + dy) * 0.7071f;
        const float diagonal = 0.45f * std::exp(-v * 3.4f - u * 30);
        const float light =
            (cross + diagonal + 0.9f * bell(far, 0.09f) + 0.16f * bell(far, 0.45f)) * smooth(3.5f, 1.5f, far);
        out.colour = out.colour + rgb(255, 244, 220) * (strength * light);
    });
}

} // namespace

// Soap bubbles and stars.
void paintStarBubbles(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float drift = clouds(p.x * 1.1f, p.y * 1.1f, 4, 321);
        const Colour soft = mix(rgb(134, 118, 150), rgb(122, 136, 146), smooth(-0.6f, 0.6f, drift + p.y));
        return soft * (1 - 0.12f * smooth(0.5f, 1.1f, towardCorner(p, edge)));
    });
    Random random(322);
    for (int i = 0; i < 30; ++i) {
        const float share = random.uniform();
        const float radius = 0.018f + 0.085f * share * share;
        const float x = random.uniform(-edge, edge);
        const float y = random.uniform(-0.5f, 0.5f);
        // Large ones keep to the sides.
        if (radius > 0.05f && length(x / edge, y * 2) < 0.55f)
            continue;
        addBubble(picture, x, y, radius, std::uint32_t(330 + i));
    }
    for (int i = 0; i < 70; ++i) {
        const float share = random.uniform();
        const float x = random.uniform(-edge, edge);
        const float y = random.uniform(-0.5f, 0.5f);
        addStar(picture, x, y, 0.008f + 0.034f * share * share * share, random.uniform(0.25f, 0.52f));
    }
}

} // namespace artwork
