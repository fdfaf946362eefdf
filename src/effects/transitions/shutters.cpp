// Shutters and grids: one pattern of columns per frame, shown in some rows and not in others.
#include "effects/transitions/families.h"

namespace transitions {

namespace {

constexpr int kSlat = 30;

// The side of a cell: a tenth of the height, made even. 0 for pictures lower than ten rows, of which these
// transitions show one or the other whole.
int cellSize(int height)
{
    const int size = pixels::truncated(height * 0.1);
    return size + size % 2;
}

// Fills one mask per column: `bits` where chosen(x), else 0.
template <class Chosen> void choose(const Scratch<u32>& masks, u32 bits, Chosen chosen)
{
    for (std::size_t x = 0; x < masks.size(); ++x)
        masks[x] = chosen(int(x)) ? bits : 0;
}

// Whether the place of a column or row in its cell lies in [low, high].
struct Inside {
    int cell;
    int low;
    int high;

    bool operator()(int position) const
    {
        const int place = position % cell;
        return place >= low && place <= high;
    }
};

} // namespace

void verticalShutter(const Canvas& c, const Progress& p)
{
    const int open = pixels::truncated(p.linear() * kSlat);
    const Scratch<u32> masks(c.width);
    choose(masks, kColourBytes, [=](int x) { return x % kSlat < open; });
    drawRows(c, [columns = masks.data()](const Line& line) { line.pick(columns, 0, line.width); });
}

void horizontalShutter(const Canvas& c, const Progress& p)
{
    const int open = pixels::truncated(p.linear() * kSlat);
    drawRows(c, [=](const Line& line) {
        if (line.v % kSlat < open)
            line.colour(0, line.width);
        else
            line.copy(line.from, 0, line.width);
    });
}

void crossShutter1(const Canvas& c, const Progress& p)
{
    const int cell = cellSize(c.height);
    if (cell == 0)
        return pixels::rows::copy(c.from, c.dst);
    const int open = pixels::truncated(p.linear() * cell) & ~1;
    const Scratch<u32> masks(c.width);
    choose(masks, kWholePixel, [=](int x) { return x % cell < open; });
    drawRows(c, [=, columns = masks.data()](const Line& line) {
        if (line.v % cell < open)
            line.copy(line.to, 0, line.width);
        else
            line.pick(columns, 0, line.width);
    });
}

void crossShutter2(const Canvas& c, const Progress& p)
{
    const int cell = cellSize(c.height);
    if (cell == 0)
        return pixels::rows::copy(c.from, c.dst);
    const int open = pixels::truncated(p.linear() * cell) & ~1;
    const Scratch<u32> masks(c.width);
    choose(masks, kWholePixel, [=](int x) { return x % cell < open; });
    drawRows(c, [=, columns = masks.data()](const Line& line) {
        if (line.v % cell < open)
            line.pick(columns, 0, line.width);
        else
            line.copy(line.from, 0, line.width);
    });
}

void gridZoomIn(const Canvas& c, const Progress& p)
{
    const int cell = cellSize(c.height);
    if (cell == 0 || p.linear() < 0.001)
        return pixels::rows::copy(c.from, c.dst);
    int size = pixels::truncated(p.linear() * cell);
    size += size % 2;
    const int low = pixels::roundHalfUp((cell - size) * 0.5);
    const Inside inside{cell, low, low + size};
    const Scratch<u32> masks(c.width);
    choose(masks, kColourBytes, inside);
    drawRows(c, [=, columns = masks.data(), height = c.height](const Line& line) {
        // Cells start at the bottom row.
        if (inside(height - 1 - line.v))
            line.pick(columns, 0, line.width);
        else
            line.copy(line.from, 0, line.width);
    });
}

void gridZoomOut(const Canvas& c, const Progress& p)
{
    if (p.linear() > 0.999)
        return pixels::rows::copy(c.to, c.dst);
    const int cell = cellSize(c.height);
    if (cell == 0)
        return pixels::rows::copy(c.from, c.dst);
    const float rest = (p.total() - p.time()) / p.total();
    const int size = pixels::truncated(float(cell) * rest) & ~1;
    const int low = pixels::roundHalfUp((cell - size) * 0.5);
    const Inside inside{cell, low, low + size};
    const Scratch<u32> masks(c.width);
    choose(masks, kColourBytes, [=](int x) { return !inside(x); });
    drawRows(c, [=, columns = masks.data(), height = c.height](const Line& line) {
        if (inside(height - 1 - line.v))
            line.pick(columns, 0, line.width);
        else
            line.colour(0, line.width);
    });
}

} // namespace transitions
