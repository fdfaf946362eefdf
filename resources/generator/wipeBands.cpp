// Wipe pictures that run across in bands, edges and tiles.
#include "noise.h"
#include "pieces.h"
#include "wipes.h"

#include <numeric>

namespace artwork {

namespace {

/// Slats that turn one a little after the other: `position` runs through the picture from 0 to 1.
float slats(float position, float count) { return fraction(position * count) + 0.5f * position; }

/// A zigzag of period 1 between -1 and 1.
float zigzag(float x) { return 4 * std::abs(fraction(x) - 0.5f) - 1; }

} // namespace

void paintHorizontalBlindsWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) { return slats(p.y + 0.5f, 9); });
}

void paintVerticalBlindsWipe(Picture& picture)
{
    const float edge = picture.edge();
    paintOrder(picture, [edge](const Place& p) { return slats((p.x + edge) / (2 * edge), 16); });
}

// Along the diagonal, with the edge along the other one.
void paintDiagonalWipe(Picture& picture)
{
    const float edge = picture.edge();
    paintOrder(picture, [edge](const Place& p) { return p.x / edge / 2 + p.y; });
}

void paintZigzagWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) { return p.x + 0.11f * zigzag(p.y * 5); });
}

void paintWavesWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) {
        return p.x + 0.10f * std::sin(2 * kPi * p.y * 1.5f + 0.6f)
            + 0.035f * std::sin(2 * kPi * p.y * 4 + p.x * 5);
    });
}

// A curtain in folds, drawn to both sides and up at its hem.
void paintCurtainWipe(Picture& picture)
{
    paintOrder(picture, [](const Place& p) {
        const float fold = std::abs(p.x);
        const float lag = p.y + 0.5f;
        return fold + 0.34f * lag * lag + 0.016f * std::sin(fold * 70 - 9 * lag);
    });
}

// The dark squares of a chessboard open from their middles, then the light ones.
void paintCheckerWipe(Picture& picture)
{
    const Size size = picture.size();
    const float side = float(size.height) / 9; // sixteen in a row
    paintOrder(picture, [=](const Place& p) {
        const float across = (float(p.column) + 0.5f - float(size.width) / 2) / side;
        const float down = (float(p.row) + 0.5f) / side;
        const float x = fraction(across) - 0.5f;
        const float y = fraction(down) - 0.5f;
        const bool light = (int(std::floor(across)) + int(std::floor(down))) % 2 != 0;
        const float open = 2 * std::max(std::abs(x), std::abs(y));
        return (light ? 1 : 0) + open * open + 0.04f * (p.x + p.y);
    });
}

// Tiles in no order, each of which opens from its middle while its predecessors finish.
void paintRandomTilesWipe(Picture& picture)
{
    constexpr int kColumns = 16;
    constexpr int kRows = 9;
    std::vector<float> turns(kColumns * kRows);
    std::iota(turns.begin(), turns.end(), 0.0f);
    Random random(411);
    for (std::size_t i = turns.size() - 1; i > 0; --i)
        std::swap(turns[i], turns[std::size_t(random.uniform() * float(i + 1))]);
    const Size size = picture.size();
    paintOrder(picture, [&](const Place& p) {
        const float across = (float(p.column) + 0.5f) * kColumns / float(size.width);
        const float down = (float(p.row) + 0.5f) * kRows / float(size.height);
        const float x = fraction(across) - 0.5f;
        const float y = fraction(down) - 0.5f;
        return turns[std::size_t(down) * kColumns + std::size_t(across)] + 14 * length(x, y);
    });
}

// Hexagons that open from their middles, roughly from the left, some early and some late.
void paintHoneycombWipe(Picture& picture)
{
    constexpr float kSide = 0.105f; // from the middle of one cell to the next
    const float step = kSide * std::sqrt(0.75f);
    paintOrder(picture, [=](const Place& p) {
        // The nearest of the middles in the two rows around the place.
        float nearest = 9;
        float cellX = 0;
        int cell = 0, line = 0;
        const int above = int(std::floor(p.y / step));
        for (int row = above; row <= above + 1; ++row) {
            const float shift = row % 2 == 0 ? 0 : 0.5f;
            const int column = int(std::round(p.x / kSide - shift));
            const float x = (float(column) + shift) * kSide;
            const float distance = length(p.x - x, p.y - float(row) * step);
            if (distance < nearest) {
                nearest = distance;
                cellX = x;
                cell = column;
                line = row;
            }
        }
        return cellX + 0.55f * hashed(cell, line, 421) + 1.8f * nearest;
    });
}

} // namespace artwork
