// Damage of old film and prints, and an old television.
#include "pieces.h"
#include "surfaces.h"

namespace artwork {

// Scratches, dust and the gate's rim on the middle grey, which the hard-light blend leaves alone.
void paintFilmDamage(Picture& picture)
{
    const Size size = picture.size();
    const float edge = picture.edge();
    const Plane bright = blurred(scratches(size, 201, 46, 0.0021f), 0.0006f);
    const Plane dark = blurred(scratches(size, 202, 30, 0.0026f), 0.0007f);
    const Plane dust = blurred(specks(size, 203, 240, 0.0052f), 0.0006f);
    const Plane dirt = blurred(specks(size, 204, 160, 0.0062f), 0.0007f);
    const Plane hairs = blurred(fibres(size, 205, 22, 0.11f, 0.0024f), 0.0006f);
    paint(picture, [&](const Place& p) {
        const float fade = clouds(p.x * 1.5f, p.y * 1.5f, 4, 206);
        const float silver =
            0.055f * (grain(p.column, p.row, 207) + grain(p.column / 2, p.row / 2, 208)) * 0.5f
            + 0.05f * noise(p.x * 210, p.y * 210, 209);
        const float corner = smooth(0.42f, 1.06f, towardCorner(p, edge));
        float light = 0.515f + 0.055f * fade + silver - 0.34f * corner;
        light += 0.42f * bright.at(p.column, p.row) + 0.45f * dust.at(p.column, p.row);
        light -= 0.30f * dark.at(p.column, p.row) + 0.38f * dirt.at(p.column, p.row)
            + 0.42f * hairs.at(p.column, p.row);
        const float gate =
            outsideBox(p.x, p.y, edge - 0.016f, 0.484f, 0.035f) + 0.004f * clouds(p.x * 22, p.y * 22, 4, 210);
        return grey(mix(clamp01(light), 0.02f, smooth(-0.008f, 0.006f, gate))) * rgb(255, 248, 230);
    });
}

// Sepia, stains, cracks and a border with a deckle edge, laid over a pale grey print by its alpha.
void paintOldPhoto(Picture& picture)
{
    const Size size = picture.size();
    const float edge = picture.edge();
    const Plane worn = blurred(scratches(size, 211, 26, 0.0018f), 0.0005f);
    const Plane dust = blurred(specks(size, 212, 130, 0.0050f), 0.0005f);
    const Plane hairs = blurred(fibres(size, 213, 40, 0.05f, 0.0016f), 0.0005f);
    constexpr float kBorder = 0.048f;
    picture.each([&](const Place& p, Pixel& pixel) {
        const float age = clouds(p.x * 2, p.y * 2, 5, 214);
        const float corner = smooth(0.40f, 1.05f, towardCorner(p, edge) + 0.06f * age);
        cover(pixel, rgb(158, 100, 46), 0.34f + 0.05f * age);
        cover(pixel, rgb(92, 52, 20), 0.55f * corner);
        // Faded by the light along one side.
        cover(pixel, rgb(244, 218, 166), 0.26f * smooth(0.1f, 1.0f, p.x / edge + 0.35f * age));
        const float stain = clouds(p.x * 2.3f + 9, p.y * 2.3f, 5, 215) - 0.42f;
        cover(
            pixel, rgb(112, 70, 30), 0.16f * smooth(0, 0.05f, stain) + 0.14f * bell(stain - 0.015f, 0.014f));
        const float cracks = smooth(0.885f, 0.95f, ridges(p.x * 2.3f + 1, p.y * 2.3f, 4, 216))
            * smooth(0.15f, 0.7f, corner + 0.4f * age);
        cover(pixel, rgb(240, 226, 196), 0.75f * cracks);
        cover(pixel, rgb(246, 234, 208), 0.6f * worn.at(p.column, p.row) + 0.7f * dust.at(p.column, p.row));
        cover(pixel, rgb(52, 32, 16), 0.5f * hairs.at(p.column, p.row));

        const float box = outsideBox(p.x, p.y, edge - kBorder, 0.5f - kBorder, 0.004f);
        const float tooth = clouds(p.x * 30, p.y * 30, 4, 217);
        const Colour card =
            mix(rgb(240, 226, 196), rgb(202, 172, 124), clamp01(0.35f + 0.5f * age + 0.15f * tooth));
        cover(pixel, kBlack, 0.30f * bell(box, 0.006f));
        cover(pixel, card * (0.97f + 0.03f * tooth), smooth(-0.0012f, 0.0012f, box));
        const bool upright = edge - std::abs(p.x) < 0.5f - std::abs(p.y);
        const float wave = 0.0042f * std::sin((upright ? p.y : p.x) * 210 + 2 * noise(p.x * 6, p.y * 6, 218));
        const float rim = outsideBox(p.x, p.y, edge - 0.0095f, 0.4905f, 0.012f) + wave;
        cover(pixel, kBlack, 0.35f * smooth(-0.010f, 0.001f, rim));
        cover(pixel, rgb(36, 25, 17), smooth(-0.001f, 0.001f, rim));
    });
}

// Lines of phosphor behind a bulging glass, for multiplying with a grey picture.
void paintTelevision(Picture& picture)
{
    const float edge = picture.edge();
    constexpr float kLines = 120;
    paint(picture, [&](const Place& p) {
        const float u = p.x / edge;
        const float v = p.y * 2;
        // The lines bend with the tube.
        const float bent = p.y * (1 + 0.022f * u * u);
        const float beam = 0.5f + 0.5f * std::cos(bent * kLines * 2 * kPi);
        const float hum = 0.06f * std::sin(p.y * 7 + 0.8f) + 0.05f * bell(p.y - 0.21f, 0.035f);
        const float line = std::floor(bent * kLines);
        const float snow = hashed(int(p.x * 260 + line * 31), int(line), 221);
        const float shine =
            0.72f + 0.28f * beam + hum + (snow > 0.985f ? 0.22f : 0.0f) - (snow < 0.02f ? 0.25f : 0.0f);
        const float tube = std::cbrt(std::sqrt(u * u * u * u * u * u + v * v * v * v * v * v));
        const float glass = smooth(1.015f, 0.975f, tube) * (1 - 0.52f * smooth(0.45f, 1.08f, tube));
        return rgb(214, 244, 255) * (clamp01(shine) * glass);
    });
}

} // namespace artwork
