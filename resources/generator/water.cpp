// Drops of water on glass.
#include "pieces.h"
#include "surfaces.h"

namespace artwork {

namespace {

struct Drop {
    float x, y;
    float radius;
    float tall; ///< height by width
    std::uint32_t seed;
};

// Places for drops, the large ones first; none touches another.
std::vector<Drop> scatter(float edge, int wanted, float smallest, float largest, std::uint32_t seed)
{
    Random random(seed);
    std::vector<Drop> drops;
    for (int i = 0; i < wanted * 6 && int(drops.size()) < wanted; ++i) {
        const float share = 1 - float(drops.size()) / float(wanted);
        const float radius =
            smallest + (largest - smallest) * share * share * share * random.uniform(0.55f, 1);
        const Drop drop{random.uniform(-edge, edge), random.uniform(-0.5f, 0.5f), radius,
            random.uniform(1, 1.16f), seed + std::uint32_t(i) * 7};
        const auto touches = [&](const Drop& other) {
            return length(drop.x - other.x, drop.y - other.y) < (drop.radius + other.radius) * 1.16f;
        };
        if (std::none_of(drops.begin(), drops.end(), touches))
            drops.push_back(drop);
    }
    return drops;
}

// Where a place lies in a drop: 0 in its middle, 1 on its outline, which is not quite round.
struct Within {
    float from;
    float dx, dy;
};
Within within(const Drop& drop, const Place& p, float downward = 0)
{
    const float dx = (p.x - drop.x) / drop.radius;
    const float dy = (p.y - drop.y - downward) / (drop.radius * drop.tall);
    const float bumps = 1 + 0.13f * noise(dx * 0.9f + 3, dy * 0.9f, drop.seed);
    // Heavier below than above.
    const float squeezed = dx * (1 + 0.10f * -dy);
    return {length(squeezed, dy) * bumps, dx, dy};
}

// Calls change(place, pixel) for the pixels about a drop, out to `reach` radii.
template <class Change> void about(Picture& picture, const Drop& drop, float reach, Change change)
{
    const auto [width, height] = picture.size();
    const float span = drop.radius * drop.tall * reach;
    const auto column = [&](float x) { return int((x + picture.edge()) * float(picture.size().height)); };
    for (int y = std::max(0, int((drop.y - span + 0.5f) * float(height)));
         y <= std::min(height - 1, int((drop.y + span + 0.5f) * float(height))); ++y)
        for (int x = std::max(0, column(drop.x - span)); x <= std::min(width - 1, column(drop.x + span)); ++x)
            change(picture.place(x, y), picture.at(x, y));
}

// The colour in a drop, a lens that shows the world upside down: dark above with the ground, bright below.
Colour lens(const Within& at)
{
    const float light = mix(0.50f, 1.04f, smooth(-0.85f, 0.75f, at.dy + 0.25f * at.dx));
    const float rim = 1 - 0.50f * smooth(0.72f, 1.0f, at.from) * smooth(0.9f, -0.6f, at.dy);
    return rgb(244, 250, 255) * (light * rim);
}

float glint(const Within& at)
{
    const float window =
        smooth(0.25f, 0.10f, std::abs(at.dx + 0.30f)) * smooth(0.19f, 0.07f, std::abs(at.dy + 0.46f));
    const float below = bell(length(at.dx - 0.25f, at.dy - 0.62f), 0.16f);
    return std::max(window, 0.8f * below);
}

void paintDrop(Picture& picture, const Drop& drop)
{
    const float pixel = 1 / (drop.radius * float(picture.size().height));
    about(picture, drop, 1.6f, [&](const Place& p, Pixel& out) {
        const Within cast = within(drop, p, drop.radius * 0.20f);
        const float shadow = smooth(1.30f, 0.82f, cast.from);
        out.colour = out.colour * mix(1, 0.74f, shadow);
        // Light that the drop gathers falls below it.
        const float gathered = bell(length(cast.dx - 0.12f, cast.dy - 0.92f), 0.15f);
        out.colour = mix(out.colour, kWhite, 0.55f * gathered);
    });
    about(picture, drop, 1.2f, [&](const Place& p, Pixel& out) {
        const Within at = within(drop, p);
        const float inside = smooth(1 + pixel, 1 - pixel, at.from);
        cover(out, mix(lens(at), kWhite, glint(at)), inside);
    });
}

void shineDrop(Picture& picture, const Drop& drop, float strength)
{
    const float pixel = 1 / (drop.radius * float(picture.size().height));
    about(picture, drop, 1.2f, [&](const Place& p, Pixel& out) {
        const Within at = within(drop, p);
        const float inside = smooth(1 + pixel, 1 - pixel, at.from);
        const float rim = smooth(0.62f, 0.98f, at.from) * (0.25f + 0.75f * smooth(-0.5f, 0.9f, at.dy));
        const float light = 0.05f + 0.42f * rim + 0.18f * smooth(0, 0.9f, at.dy) + 0.95f * glint(at);
        out.colour = mix(out.colour, rgb(214, 230, 246) * (light * strength), inside);
    });
}

} // namespace

// Drops on glass a little grey, so that they can shine, for the multiplying blend.
void paintDropsOnGlass(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float mist = clouds(p.x * 2.5f, p.y * 2.5f, 5, 191);
        return mix(rgb(226, 234, 240), rgb(206, 218, 228), 0.5f + 0.5f * mist);
    });
    for (const Drop& drop : scatter(edge, 420, 0.0045f, 0.062f, 192))
        paintDrop(picture, drop);
}

// Lit drops on black glass, some of which have run down, for adding.
void paintRainOnGlass(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float mist = clouds(p.x * 1.6f, p.y * 1.6f, 5, 195);
        return rgb(40, 54, 70) * clamp01(0.32f + 0.55f * mist);
    });
    Random random(196);
    for (int run = 0; run < 15; ++run) {
        const float startX = random.uniform(-edge, edge);
        const float from = random.uniform(-0.6f, 0.0f);
        const float to = from + random.uniform(0.35f, 0.85f);
        const float radius = random.uniform(0.010f, 0.019f);
        const auto course = [&](float y) { return startX + 0.035f * noise(startX * 9, y * 2.6f, 197); };
        // The track wiped the mist away and left beads behind.
        picture.each([&](const Place& p, Pixel& pixel) {
            if (p.y < from || p.y > to || std::abs(p.x - startX) > 0.08f)
                return;
            const float across = std::abs(p.x - course(p.y)) / (radius * 0.72f);
            pixel.colour = mix(pixel.colour, rgb(6, 9, 13), smooth(1.05f, 0.8f, across));
            pixel.colour = pixel.colour
                + rgb(150, 175, 200)
                    * (0.30f * bell(across - 0.92f, 0.10f) * smooth(from, mix(from, to, 0.4f), p.y));
        });
        for (float y = from; y < to - radius; y += random.uniform(0.5f, 2.6f) * radius)
            shineDrop(picture,
                {course(y) + random.normal() * radius * 0.2f, y, radius * random.uniform(0.12f, 0.42f), 1.15f,
                    std::uint32_t(int(y * 9999))},
                0.75f);
        shineDrop(picture, {course(to), to, radius, 1.45f, 198}, 0.95f);
    }
    for (const Drop& drop : scatter(edge, 520, 0.0028f, 0.027f, 199))
        shineDrop(picture, drop, 0.85f);
}

} // namespace artwork
