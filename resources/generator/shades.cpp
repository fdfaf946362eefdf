// Vignettes, dark and light borders, masks and colour filters.
#include "pieces.h"
#include "surfaces.h"

namespace artwork {

// The first six shades, and the corners of the low-fidelity camera, are for the multiplying blend: white in
// the middle.

void paintVignetteRound(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture,
        [&](const Place& p) { return grey(1 - 0.90f * smooth(0.36f, 1.04f, towardCorner(p, edge))); });
}

// The oval mount of an old portrait.
void paintVignetteOval(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float oval = length(p.x / (edge * 0.80f), p.y / 0.445f) - 1;
        const float card = 1 + 0.10f * clouds(p.x * 9, p.y * 9, 5, 171);
        const Colour mount = rgb(66, 44, 30) * card;
        const float bevel = bell(oval - 0.15f, 0.012f);
        return mix(mix(kWhite, mount, smooth(-0.28f, 0.12f, oval)), rgb(150, 116, 82), 0.35f * bevel);
    });
}

// A print whose border was held back under the enlarger.
void paintVignettePrint(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float box = outsideSoftBox(p.x, p.y, edge - 0.035f, 0.465f);
        const float soft = 0.66f * smooth(-0.24f, 0.03f, box) + 0.28f * smooth(-0.03f, 0.035f, box);
        return grey(1 - soft);
    });
}

// Corners of blue dusk around a warm middle.
void paintVignetteBlue(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float corner = towardCorner(p, edge) + 0.05f * clouds(p.x * 1.4f, p.y * 1.4f, 3, 172);
        const Colour near = mix(rgb(255, 250, 236), rgb(150, 140, 214), smooth(0.30f, 0.78f, corner));
        return mix(near, rgb(26, 22, 74), smooth(0.55f, 1.08f, corner));
    });
}

// A lamp on the upper left, the rest of the room in the dark.
void paintVignetteSpot(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float far = length((p.x + edge * 0.10f) * 0.92f, p.y + 0.05f);
        const float bright = smooth(0.66f, 0.18f, far);
        return mix(
            rgb(20, 16, 18), mix(rgb(210, 160, 112), rgb(255, 250, 240), bright), 0.04f + 0.96f * bright);
    });
}

// Ink rolled over the rim of a plate.
void paintVignetteInk(Picture& picture)
{
    const float edge = picture.edge();
    const Plane spatter = blurred(specks(picture.size(), 173, 420, 0.0075f), 0.0006f);
    paint(picture, [&](const Place& p) {
        const bool upright = edge - std::abs(p.x) < 0.5f - std::abs(p.y);
        const float bristle = upright ? clouds(p.x * 46, p.y * 3, 4, 174) : clouds(p.x * 3, p.y * 46, 4, 175);
        const float box = beyondRagged(p, edge, 0.075f, 0.030f, 7, 176) + 0.030f * bristle;
        const float ink = smooth(-0.014f, 0.016f, box);
        const float dry = smooth(0.10f, 0.75f, bristle) * smooth(0.055f, 0, box) * 0.75f;
        const float drops = spatter.at(p.column, p.row) * smooth(-0.13f, -0.02f, box);
        const float shade = 0.20f * smooth(-0.30f, 0, box);
        const float dark = clamp01(shade + std::max(ink * (1 - dry), drops));
        return mix(kWhite, rgb(20, 18, 24), dark);
    });
}

void paintLomoCorners(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float corner = towardCorner(p, edge);
        const Colour near = mix(rgb(255, 255, 246), rgb(176, 186, 170), smooth(0.28f, 0.72f, corner));
        return mix(near, rgb(30, 34, 52), smooth(0.50f, 1.08f, corner));
    });
}

// Fog around a black middle, for the screen blend.
void paintVignetteWhite(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float fog = clouds(p.x * 2.0f, p.y * 2.0f, 5, 177);
        const float corner = towardCorner(p, edge) + 0.09f * fog;
        return rgb(252, 253, 255) * (0.97f * smooth(0.40f, 0.96f, corner));
    });
}

// Dark edges, for the blend that takes the darker of two: white changes nothing, the border is dark itself.
void paintDarkEdges(Picture& picture)
{
    const float edge = picture.edge();
    const Plane worn = blurred(scratches(picture.size(), 178, 60, 0.0022f), 0.0007f);
    paint(picture, [&](const Place& p) {
        const float grime = clouds(p.x * 3.2f, p.y * 3.2f, 6, 179);
        const float border = smooth(-0.26f, 0.04f, beyondRagged(p, edge, 0.015f, 0.09f, 3, 180));
        const float dark = clamp01(border * border * (1.02f + 0.22f * grime));
        const Colour tone = mix(kWhite, rgb(14, 16, 26), std::sqrt(dark));
        return mix(tone, rgb(92, 90, 92), 0.5f * worn.at(p.column, p.row) * smooth(0.25f, 0.9f, dark));
    });
}

// A mask of the place in focus: colour stays where it is white.
void paintFocusMask(Picture& picture)
{
    paint(picture, [](const Place& p) { return grey(smooth(0.50f, 0.20f, length(p.x, p.y))); });
}

namespace {

// Light through a round lens: a bright middle, faint rings, a darker rim.
template <class Paint> void paintLens(Picture& picture, float centreX, float centreY, Paint tone)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float far = length((p.x - centreX) / edge, (p.y - centreY) * 2) * 0.70710678f;
        const float rings = 0.008f * std::cos(far * 46) * smooth(0.05f, 0.3f, far) * smooth(0.9f, 0.55f, far);
        return tone(far + rings);
    });
}

} // namespace

// A bright and warm lens with a dusky border, for the multiplying and the overlay blend.
void paintWarmCircle(Picture& picture)
{
    paintLens(picture, 0.03f, -0.04f, [](float far) {
        const Colour near = mix(rgb(255, 244, 226), rgb(238, 190, 154), smooth(0.10f, 0.56f, far));
        return mix(near, rgb(112, 56, 78), smooth(0.44f, 1.05f, far));
    });
}

// A cool lens for the overlay blend: a little above the middle grey in the centre, far below it at the rim.
void paintCoolCircle(Picture& picture)
{
    paintLens(picture, -0.02f, -0.03f, [](float far) {
        const Colour near = mix(rgb(190, 182, 166), rgb(138, 140, 136), smooth(0.08f, 0.55f, far));
        return mix(near, rgb(62, 70, 92), smooth(0.42f, 1.05f, far));
    });
}

// An evening sky from rose and amber down to dusk, for the multiplying blend.
void paintSunsetFilter(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float drift = 0.07f * clouds(p.x * 1.2f, p.y * 1.2f, 3, 181);
        const float down = p.y + 0.5f + 0.22f * p.x + drift;
        const Colour sky = mix(rgb(255, 196, 120), rgb(255, 226, 214), smooth(-0.1f, 0.48f, down));
        const Colour all = mix(sky, rgb(150, 168, 226), smooth(0.45f, 1.15f, down));
        const float sun = bell(length(p.x + edge * 0.42f, p.y + 0.26f), 0.30f);
        return mix(all, rgb(255, 244, 214), 0.75f * sun)
            * (1 - 0.42f * smooth(0.55f, 1.1f, towardCorner(p, edge)));
    });
}

} // namespace artwork
