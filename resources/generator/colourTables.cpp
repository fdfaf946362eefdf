// Tables of the colour lookups: 64 x 64 x 64 colours in 8 x 8 squares, one for each step of blue, row by row
// from the top; red grows to the right and green downward in each.
#include "pieces.h"

namespace artwork {

namespace {

constexpr int kSteps = 64;
constexpr int kSquares = 8;

template <class Curve> Colour each(Colour c, Curve curve) { return {curve(c.r), curve(c.g), curve(c.b)}; }

float luma(Colour c) { return 0.299f * c.r + 0.587f * c.g + 0.114f * c.b; }

Colour limited(Colour c)
{
    return each(c, [](float v) { return clamp01(v); });
}

Colour saturated(Colour c, float amount) { return mix(kWhite * luma(c), c, amount); }

/// More contrast by an S-shaped curve around the middle: amount 0 leaves, 1 is strong. Black and white stay.
Colour contrasted(Colour c, float amount)
{
    return each(c, [=](float v) { return (1 - amount) * v + amount * (v * v * (3 - 2 * v)); });
}

Colour powered(Colour c, float gamma)
{
    return each(limited(c), [=](float v) { return std::pow(v, gamma); });
}

/// The colour on a scale where black becomes `black` and white becomes `white`.
Colour spanned(Colour c, Colour black, Colour white) { return black + c * (white + black * -1); }

/// Tints shadows and lights in colours of their own; the middle keeps its colour.
Colour splitToned(Colour c, Colour shadows, Colour lights, float amount)
{
    const float y = luma(c);
    const float dark = 1 - smooth(0.0f, 0.55f, y);
    const float light = smooth(0.45f, 1.0f, y);
    return c
        + ((shadows + kWhite * -luma(shadows)) * dark + (lights + kWhite * -luma(lights)) * light) * amount;
}

Colour tealOrange(Colour c)
{
    const float skin = smooth(0.0f, 0.35f, c.r - c.b); // warm colours stay warm
    const Colour split = splitToned(contrasted(c, 0.35f), {0.0f, 0.45f, 0.55f}, {1.0f, 0.62f, 0.30f}, 0.28f);
    return saturated(mix(split, split * Colour{1.06f, 0.98f, 0.86f}, skin), 1.08f);
}

Colour goldenHour(Colour c)
{
    return saturated(splitToned(powered(c, 0.92f) * Colour{1.08f, 0.99f, 0.80f}, {0.35f, 0.12f, 0.30f},
                         {1.0f, 0.75f, 0.30f}, 0.22f),
        1.10f);
}

Colour moonlight(Colour c)
{
    const Colour night = saturated(powered(c, 1.3f), 0.3f) * Colour{0.58f, 0.68f, 0.88f};
    return spanned(contrasted(night, 0.2f), {0.01f, 0.015f, 0.05f}, {0.86f, 0.94f, 1.0f});
}

Colour bleachBypass(Colour c)
{
    const float y = luma(c);
    // The silver image lies over the dyes: an overlay of the picture's own brightness.
    const Colour over = each(c, [=](float v) { return y < 0.5f ? 2 * v * y : 1 - 2 * (1 - v) * (1 - y); });
    return saturated(mix(c, over, 0.85f), 0.55f);
}

Colour crossProcess(Colour c)
{
    const Colour curved{smooth(0.02f, 0.95f, c.r),
        0.3f * c.g + 0.7f * smooth(0.0f, 1.0f, std::pow(c.g, 0.9f)), 0.15f + 0.62f * c.b};
    return saturated(splitToned(curved, {0.0f, 0.35f, 0.25f}, {1.0f, 1.0f, 0.45f}, 0.18f), 1.12f);
}

Colour fadedPrint(Colour c)
{
    return spanned(saturated(contrasted(c, 0.15f), 0.72f), {0.13f, 0.11f, 0.14f}, {0.96f, 0.94f, 0.88f});
}

Colour cinema(Colour c)
{
    const Colour dyes{1.10f * c.r - 0.06f * c.g - 0.04f * c.b, -0.04f * c.r + 1.09f * c.g - 0.05f * c.b,
        -0.03f * c.r - 0.08f * c.g + 1.11f * c.b};
    return spanned(
        splitToned(contrasted(limited(dyes), 0.55f), {0.05f, 0.15f, 0.30f}, {1.0f, 0.92f, 0.75f}, 0.12f),
        {0.02f, 0.02f, 0.025f}, {1.0f, 0.985f, 0.95f});
}

Colour pastel(Colour c)
{
    return spanned(saturated(powered(c, 0.72f), 0.78f), {0.16f, 0.15f, 0.19f}, {1.0f, 0.985f, 0.98f});
}

Colour sepia(Colour c)
{
    const float y = luma(contrasted(c, 0.25f));
    return spanned(Colour{std::pow(y, 0.82f), std::pow(y, 1.0f), std::pow(y, 1.28f)}, {0.06f, 0.035f, 0.02f},
        {1.0f, 0.95f, 0.84f});
}

Colour silver(Colour c)
{
    // The brightness behind an orange filter: skies go dark, skin goes light.
    const float y = clamp01(0.62f * c.r + 0.48f * c.g - 0.10f * c.b);
    return spanned(contrasted(kWhite * y, 0.65f), {0.01f, 0.01f, 0.012f}, {0.99f, 0.99f, 0.985f});
}

Colour infrared(Colour c)
{
    const float leaf = smooth(0.02f, 0.25f, c.g - 0.5f * (c.r + c.b));
    const float sky = smooth(0.02f, 0.30f, c.b - 0.5f * (c.r + c.g));
    const float y = luma(c);
    const float seen = clamp01((y + leaf * (0.35f + 0.45f * y)) * (1 - 0.75f * sky));
    return contrasted(
        mix(kWhite * seen, Colour{std::min(1.0f, 1.04f * seen), seen, 0.96f * seen}, 0.6f), 0.5f);
}

Colour copper(Colour c)
{
    const float y = luma(contrasted(c, 0.4f));
    const Colour ink = spanned(Colour{std::pow(y, 0.78f), std::pow(y, 1.12f), std::pow(y, 1.45f)},
        {0.10f, 0.03f, 0.02f}, {1.0f, 0.94f, 0.80f});
    return mix(ink, c, 0.18f);
}

template <Colour (*kLook)(Colour)> void paintTable(Picture& picture)
{
    picture.each([](const Place& p, Pixel& pixel) {
        const int blue = p.row / kSteps * kSquares + p.column / kSteps;
        const auto part = [](int step) { return float(step) / float(kSteps - 1); };
        pixel = {kLook({part(p.column % kSteps), part(p.row % kSteps), part(blue)}), 1};
    });
}

} // namespace

void paintTealOrangeTable(Picture& picture) { paintTable<tealOrange>(picture); }
void paintGoldenHourTable(Picture& picture) { paintTable<goldenHour>(picture); }
void paintMoonlightTable(Picture& picture) { paintTable<moonlight>(picture); }
void paintBleachBypassTable(Picture& picture) { paintTable<bleachBypass>(picture); }
void paintCrossProcessTable(Picture& picture) { paintTable<crossProcess>(picture); }
void paintFadedPrintTable(Picture& picture) { paintTable<fadedPrint>(picture); }
void paintCinemaTable(Picture& picture) { paintTable<cinema>(picture); }
void paintPastelTable(Picture& picture) { paintTable<pastel>(picture); }
void paintSepiaTable(Picture& picture) { paintTable<sepia>(picture); }
void paintSilverTable(Picture& picture) { paintTable<silver>(picture); }
void paintInfraredTable(Picture& picture) { paintTable<infrared>(picture); }
void paintCopperTable(Picture& picture) { paintTable<copper>(picture); }

} // namespace artwork
