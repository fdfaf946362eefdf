// The old picture breaks into tiles that move outward and shrink.
#include "effects/transitions/families.h"

#include <cmath>

namespace transitions {

namespace {

struct Tile {
    int x, v;     ///< corner in the old picture
    int atX, atV; ///< corner where it is shown
};

int signOf(double value) { return (value > 0) - (value < 0); }

constexpr int kMostTiles = 80;

// Tiles lie in rows from the top and are shown in that order, later ones above earlier ones.
struct Tiling {
    int columns, rows;
    int tileWidth, tileHeight;   ///< in the old picture
    int shownWidth, shownHeight; ///< of what is left of a tile
};

// Draws tiles that move outward: `sideways` to the side on which their corner lies, and `along` times the
// slope of the line from the centre through the corner.
void drawTiles(const Canvas& c, const Tiling& tiling, double sideways, double along)
{
    std::array<Tile, kMostTiles> tiles;
    int count = 0;
    double up = 0;
    for (int row = 0; row < tiling.rows; ++row) {
        for (int column = 0; column < tiling.columns; ++column) {
            const int x = column * tiling.tileWidth;
            const int v = row * tiling.tileHeight;
            const int dx = x - c.width / 2;
            const int dy = c.height / 2 - v;
            const double movedX = dx + signOf(dx) * sideways;
            // A tile on the upright axis has no line of its own through the centre: it keeps to the last one.
            if (dx != 0)
                up = double(dy) / dx * along * signOf(movedX);
            tiles[std::size_t(count++)] = {
                x, v, c.width / 2 + pixels::truncated(movedX), c.height / 2 - pixels::truncated(dy + up)};
        }
    }
    drawRows(c, [=, all = tiles.data()](const Line& line) {
        line.copy(line.to, 0, line.width);
        for (int i = 0; i < count; ++i) {
            const Tile tile = all[i];
            const int row = line.v - tile.atV;
            const int first = std::max(tile.atX, 0);
            const int last = std::min(tile.atX + tiling.shownWidth, line.width);
            if (row < 0 || row >= tiling.shownHeight || first >= last)
                continue;
            std::memcpy(line.dst + first,
                c.from.pictureRow(tile.v + row).data() + tile.x + (first - tile.atX),
                std::size_t(last - first) * 4);
        }
    });
}

} // namespace

void moveRect1(const Canvas& c, const Progress& p)
{
    const double rest = 1 - p.linear();
    const double reach = c.width * p.linear() * 0.5;
    const Tiling tiling{9, 7, c.width / 9, c.height / 7, pixels::truncated(rest * c.width / 9),
        pixels::truncated(rest * c.height / 7)};
    drawTiles(c, tiling, reach * 0.5, reach);
}

void moveRect2(const Canvas& c, const Progress& p)
{
    const double rest = 1 - p.linear();
    const double reach = c.width * p.linear() * 0.5;
    const int tileWidth = c.width / 10;
    const int tileHeight = c.height / 8;
    const Tiling tiling{10, 8, tileWidth, tileHeight, pixels::truncated(rest * tileWidth),
        pixels::truncated(rest * tileHeight)};
    drawTiles(c, tiling, reach * p.linear() / 3, reach * (rest * tileWidth) / 5 * rest);
}

} // namespace transitions
