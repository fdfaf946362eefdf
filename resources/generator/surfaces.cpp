// Fibres, scratches, specks, cloth and ragged edges, by noise and random strokes.
#include "surfaces.h"

namespace artwork {

Plane fibres(Size size, std::uint32_t seed, int count, float longest, float width)
{
    return drawn(size, [&](cairo_t* cairo) {
        Random random(seed);
        const float edge = float(size.width) / float(size.height) / 2;
        for (int i = 0; i < count; ++i) {
            const float x = random.uniform(-edge, edge);
            const float y = random.uniform(-0.5f, 0.5f);
            const float reach = longest * random.uniform(0.25f, 1);
            const float angle = random.uniform(0, 2 * kPi);
            const float bend = random.uniform(-1.2f, 1.2f);
            const auto away = [&](float share, float turn) {
                return std::pair{
                    x + reach * share * std::cos(angle + turn), y + reach * share * std::sin(angle + turn)};
            };
            const auto [x1, y1] = away(0.35f, bend);
            const auto [x2, y2] = away(0.7f, -bend * 0.6f);
            const auto [x3, y3] = away(1, bend * 0.3f);
            cairo_set_source_rgba(cairo, 0, 0, 0, random.uniform(0.25f, 1));
            cairo_set_line_width(cairo, width * random.uniform(0.5f, 1));
            cairo_move_to(cairo, x, y);
            cairo_curve_to(cairo, x1, y1, x2, y2, x3, y3);
            cairo_stroke(cairo);
        }
    });
}

Plane scratches(Size size, std::uint32_t seed, int count, float width)
{
    return drawn(size, [&](cairo_t* cairo) {
        Random random(seed);
        const float edge = float(size.width) / float(size.height) / 2;
        for (int i = 0; i < count; ++i) {
            const float lean = random.normal() * 0.02f;
            const float wide = width * random.uniform(0.4f, 1);
            const float opacity = random.uniform(0.25f, 1);
            float x = random.uniform(-edge, edge);
            for (float y = random.uniform(-0.7f, 0.1f); y < 0.5f && random.uniform() < 0.88f;) {
                const float next = y + random.uniform(0.03f, 0.30f);
                const float shifted = x + lean * (next - y) + random.normal() * 0.0012f;
                const float bend = random.normal() * 0.001f;
                const float bendBack = random.normal() * 0.001f;
                cairo_set_source_rgba(cairo, 0, 0, 0, opacity * random.uniform(0.3f, 1));
                cairo_set_line_width(cairo, wide);
                cairo_move_to(cairo, x, y);
                cairo_curve_to(cairo, x + bend, mix(y, next, 0.3f), shifted + bendBack, mix(y, next, 0.7f),
                    shifted, next);
                cairo_stroke(cairo);
                x = shifted;
                y = next + (random.uniform() < 0.4f ? random.uniform(0.01f, 0.15f) : 0);
            }
        }
    });
}

Plane specks(Size size, std::uint32_t seed, int count, float largest)
{
    return drawn(size, [&](cairo_t* cairo) {
        Random random(seed);
        const float edge = float(size.width) / float(size.height) / 2;
        for (int i = 0; i < count; ++i) {
            const float share = random.uniform();
            const float radius = largest * (0.12f + 0.88f * share * share * share * share);
            cairo_set_source_rgba(cairo, 0, 0, 0, random.uniform(0.3f, 1));
            const float x = random.uniform(-edge, edge);
            const float y = random.uniform(-0.5f, 0.5f);
            cairo_save(cairo);
            cairo_translate(cairo, x, y);
            cairo_rotate(cairo, random.uniform(0, kPi));
            cairo_scale(cairo, 1, random.uniform(0.55f, 1));
            circle(cairo, 0, 0, radius);
            cairo_restore(cairo);
            cairo_fill(cairo);
        }
    });
}

float cloth(const Place& p, float thread, std::uint32_t seed)
{
    // Threads wander and differ in thickness.
    const float u = p.x / thread + 0.35f * noise(p.x * 2, p.y * 9, seed);
    const float v = p.y / thread + 0.35f * noise(p.x * 9, p.y * 2, seed + 1);
    const int column = int(std::floor(u));
    const int row = int(std::floor(v));
    const float alongX = (u - float(column)) * 2 - 1;
    const float alongY = (v - float(row)) * 2 - 1;
    const bool lying = (column + row) % 2 == 0;
    const float across = lying ? alongY : alongX;
    const float along = lying ? alongX : alongY;
    const float twist = lying ? noise(p.x * 40, p.y * 330, seed + 2) : noise(p.x * 330, p.y * 40, seed + 3);
    const float own = lying ? hashed(0, row, seed + 4) : hashed(column, 1, seed + 4);
    const float gap = across * across * across * across;
    return 0.88f - 0.30f * gap - 0.17f * along * along + 0.18f * twist + 0.14f * (own - 0.5f);
}

float beyondRagged(const Place& p, float edge, float margin, float depth, float scale, std::uint32_t seed)
{
    return outsideSoftBox(p.x, p.y, edge - margin, 0.5f - margin)
        + depth * clouds(p.x * scale, p.y * scale, 6, seed);
}

} // namespace artwork
