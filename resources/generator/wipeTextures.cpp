// Wipe pictures out of nature and the studio: clouds, ink, brushes, grain.
#include "noise.h"
#include "pieces.h"
#include "wipes.h"

namespace artwork {

void paintCloudsWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) {
        const float bend = 0.35f * clouds(p.x * 1.1f + 4, p.y * 1.1f, 3, 431);
        return clouds(p.x * 1.7f + bend, p.y * 2.1f - bend, 6, 433);
    });
}

// Drops of ink that fall one after the other and run into each other with frayed borders.
void paintInkWipe(Picture& picture)
{
    struct Drop {
        float x, y, start;
    };
    const float edge = picture.edge();
    std::vector<Drop> drops;
    Random random(443);
    constexpr int kDrops = 14;
    for (int i = 0; i < kDrops; ++i) {
        const float x = random.uniform(-edge, edge);
        const float y = random.uniform(-0.5f, 0.5f);
        drops.push_back({x, y, 0.034f * float(i)});
    }
    drops.front() = {-0.16f, 0.03f, 0};
    paintOrder(picture, [&](const Place& p) {
        const float frayX = 0.10f * clouds(p.x * 3.5f, p.y * 3.5f, 6, 445);
        const float frayY = 0.10f * clouds(p.x * 3.5f, p.y * 3.5f, 6, 447);
        float when = 9;
        for (const Drop& drop : drops)
            when = std::min(when, drop.start + length(p.x - drop.x + frayX, p.y - drop.y + frayY));
        return when + 0.03f * ridges(p.x * 5, p.y * 5, 4, 449);
    });
}

// Strokes of a broad brush, to the right and to the left in turn, each over the lower edge of the one before.
void paintBrushStrokesWipe(Picture& picture)
{
    constexpr int kStrokes = 7;
    const float edge = picture.edge();
    paintOrder(picture, [=](const Place& p) {
        const float y =
            p.y + 0.5f + 0.018f * std::sin(p.x * 2.4f + 0.5f) + 0.012f * clouds(p.x * 3, p.y * 30, 3, 451);
        const int stroke = std::clamp(int(std::floor(y * kStrokes)), 0, kStrokes - 1);
        const float across = (p.x + edge) / (2 * edge);
        const float way = stroke % 2 == 0 ? across : 1 - across;
        const float bristles = 0.16f * noise(p.x * 0.7f, y * 130, 453) + 0.08f * noise(p.x * 2, y * 290, 455);
        // The middle of the brush is ahead of its ends.
        const float inside = fraction(y * kStrokes) - 0.5f;
        return 0.72f * float(stroke) + way + bristles + 0.35f * inside * inside;
    });
}

// Grain of about four pixels, so that it stays grain when the picture is scaled.
void paintGrainDissolveWipe(Picture& picture)
{
    paintOrder(picture,
        blurred(planeOf(picture.size(), [](const Place& p) { return grain(p.column, p.row, 461); }),
            1.3f / float(picture.size().height)));
}

} // namespace artwork
