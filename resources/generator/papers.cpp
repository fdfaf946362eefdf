// Papers and canvases: what a photograph is printed or drawn on.
#include "pieces.h"
#include "surfaces.h"

namespace artwork {

namespace {

// Brown spots of age, dense in some places.
float foxing(const Place& p, std::uint32_t seed)
{
    const Cell cell = cells(p.x * 22, p.y * 22, seed);
    const float dense = smooth(0.05f, 0.5f, clouds(p.x * 2.2f, p.y * 2.2f, 3, seed + 9));
    const float radius = cell.id < 0.35f ? 0.10f + 0.8f * cell.id : 0;
    return radius > 0 ? dense * smooth(radius, radius * 0.3f, cell.nearest) : 0;
}

// A fold: a bright ridge, a dark valley, broken by wear.
float crease(float across, float along, std::uint32_t seed)
{
    const float wander = across + 0.003f * noise(along * 5, 0.5f, seed);
    const float wear = 0.6f + 0.6f * noise(along * 40, across * 30, seed + 1);
    return wear * (bell(wander, 0.0018f) - 0.9f * bell(wander - 0.0042f, 0.0030f));
}

} // namespace

// An ancient canvas, for the multiplying blend.
void paintAncientCanvas(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float weave = clamp01(cloth(p, 0.0098f, 101));
        const float age = clouds(p.x * 1.8f, p.y * 1.8f, 5, 107);
        const float corner = towardCorner(p, edge);
        const float dark = clamp01(0.11f + 0.20f * age + 0.75f * smooth(0.55f, 1.08f, corner + 0.14f * age));
        const Colour dyed = mix(rgb(255, 244, 216), rgb(150, 104, 58), dark);
        const float cracks = smooth(0.80f, 0.93f, ridges(p.x * 3.2f, p.y * 3.2f, 3, 111));
        return dyed * (0.63f + 0.46f * weave) * (1 - 0.30f * cracks * smooth(0.3f, 0.9f, corner));
    });
}

// Old folded paper, for the multiplying blend.
void paintOldPaper(Picture& picture)
{
    const float edge = picture.edge();
    const Plane hairs = fibres(picture.size(), 121, 2600, 0.035f, 0.0011f);
    paint(picture, [&](const Place& p) {
        const float stains = clouds(p.x * 2.1f, p.y * 2.1f, 6, 122);
        const float ring = smooth(0.05f, 0, std::abs(clouds(p.x * 1.3f, p.y * 1.3f, 4, 123) - 0.22f));
        const float margin = smooth(-0.14f, 0.02f, beyondRagged(p, edge, 0.02f, 0.07f, 3, 124));
        const float brown = clamp01(0.10f + 0.22f * stains + 0.10f * ring + 0.72f * margin * margin);
        const float folds = crease(p.x - 0.012f, p.y, 125) + crease(p.y + 0.021f, p.x, 126);
        const float tooth = clouds(p.x * 70, p.y * 70, 3, 127);
        const Colour paper = mix(rgb(252, 238, 204), rgb(142, 94, 46), brown);
        const float light = 0.95f + 0.035f * tooth + 0.10f * folds - 0.07f * hairs.at(p.column, p.row);
        return mix(paper, rgb(150, 96, 52), 0.55f * foxing(p, 128)) * light;
    });
}

// Burnt paper, for the burning blend with a grey photograph: the paper about 0.88, charred borders black.
void paintBurntPaper(Picture& picture)
{
    const float edge = picture.edge();
    struct Hole {
        float x, y, radius;
    };
    const Hole holes[] = {
        {-0.95f, -0.86f, 0.17f}, {0.99f, 0.74f, 0.20f}, {0.72f, -1.0f, 0.10f}, {-0.45f, 1.0f, 0.08f}};
    const Plane hairs = fibres(picture.size(), 131, 1800, 0.03f, 0.0010f);
    paint(picture, [&](const Place& p) {
        const float ragged = 0.050f * clouds(p.x * 3.6f, p.y * 3.6f, 7, 132);
        float burnt = beyondRagged(p, edge, 0.035f, 0.035f, 5, 133) + ragged;
        for (const Hole& hole : holes)
            burnt = std::max(
                burnt, hole.radius - length(p.x - hole.x * edge, p.y - hole.y * 0.5f) + ragged * 1.3f);
        const float stains = clouds(p.x * 2.4f, p.y * 2.4f, 5, 134);
        const float tooth = clouds(p.x * 60, p.y * 60, 3, 135);
        const Colour paper = mix(rgb(255, 246, 218), rgb(242, 216, 166), clamp01(0.30f + 0.45f * stains));
        const float scorch = smooth(-0.125f, -0.008f, burnt);
        const Colour scorched = mix(paper, rgb(126, 74, 30), scorch * scorch * scorch);
        const Colour lit = scorched * (0.98f + 0.04f * tooth - 0.06f * hairs.at(p.column, p.row));
        const Colour charred = mix(lit, rgb(22, 13, 8), smooth(-0.030f, -0.004f, burnt));
        const float embers =
            bell(burnt + 0.003f, 0.0032f) * smooth(0.0f, 0.5f, noise(p.x * 14, p.y * 14, 136));
        return mix(mix(charred, kBlack, smooth(-0.002f, 0.006f, burnt)), rgb(255, 150, 52), 0.85f * embers);
    });
}

// Tones for the burning blend with a photograph washed with gold: the gold loses what they lack, so the
// middle turns to sepia and the borders, bluish here, to brown.
void paintGoldenPrint(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        const float mottle = clouds(p.x * 4, p.y * 4, 6, 141);
        const float plaster = ridges(p.x * 9, p.y * 9, 4, 142);
        const float corner = towardCorner(p, edge);
        const float brush = noise(p.x * 3 + p.y, p.y * 120, 143);
        const float border = smooth(-0.10f, 0.03f, beyondRagged(p, edge, 0.035f, 0.05f, 6, 144));
        const float dark = clamp01(0.42f * smooth(0.30f, 1.05f, corner) + 0.55f * border);
        const Colour tone = mix(rgb(186, 182, 188), rgb(72, 92, 118), dark);
        return tone * (1 + 0.055f * mottle + 0.05f * (plaster - 0.4f) + 0.022f * brush);
    });
}

// Kraft paper to draw on: grey-brown, dark enough for a chalk portrait, its blue near the middle, which the
// soft-light blend takes for neutral.
void paintKraftCanvas(Picture& picture)
{
    const float edge = picture.edge();
    const Plane dark = fibres(picture.size(), 151, 1500, 0.05f, 0.0013f);
    const Plane pale = fibres(picture.size(), 152, 1300, 0.05f, 0.0013f);
    paint(picture, [&](const Place& p) {
        const float weave = cloth(p, 0.0078f, 153) - 0.77f;
        const float pulp = clouds(p.x * 5, p.y * 5, 6, 154);
        const float shade = smooth(0.45f, 1.1f, towardCorner(p, edge));
        const float light = 1 + 0.36f * weave + 0.11f * pulp - 0.20f * shade
            - 0.15f * dark.at(p.column, p.row) + 0.13f * pale.at(p.column, p.row);
        return rgb(126, 110, 96) * light;
    });
}

// Charcoal on paper, for adding to a grey photograph: black leaves it, pits of the paper stay white, strokes
// end in white paper.
void paintCharcoalPaper(Picture& picture)
{
    const float edge = picture.edge();
    paint(picture, [&](const Place& p) {
        // The chalk was led from lower left to upper right.
        const float along = (p.x - p.y) * 0.70710678f;
        const float across = (p.x + p.y) * 0.70710678f;
        const float strokes = clouds(along * 2.2f, across * 34, 4, 161);
        const float tooth = clouds(p.x * 85, p.y * 85, 3, 162) + 0.25f * grain(p.column, p.row, 163);
        const float box = outsideBox(p.x, p.y, edge - 0.085f, 0.5f - 0.085f, 0.05f);
        const float border = smooth(-0.055f, 0.055f, box + 0.055f * strokes + 0.025f * tooth);
        const float pits = smooth(0.20f, 0.85f, tooth + 0.22f * strokes) * 0.24f;
        const float veil = 0.05f * smooth(0.0f, 0.8f, strokes);
        return grey(clamp01(pits + veil + border));
    });
}

} // namespace artwork
