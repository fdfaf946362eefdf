// The table sizes that have a layout as a flat texture of tiles.
#pragma once

#include <algorithm>
#include <array>

namespace lut {

/// A table of `size` lies in columns x rows tiles of size x size pixels.
struct TileLayout {
    int size;
    int columns;
    int rows;
};

inline constexpr std::array<TileLayout, 20> kTileLayouts{{
    {8, 4, 2},
    {9, 3, 3},
    {16, 4, 4},
    {17, 17, 1},
    {18, 9, 2},
    {20, 4, 5},
    {21, 7, 3},
    {24, 6, 4},
    {25, 5, 5},
    {28, 7, 4},
    {30, 6, 5},
    {32, 8, 4},
    {33, 11, 3},
    {36, 6, 6},
    {40, 8, 5},
    {42, 7, 6},
    {45, 9, 5},
    {48, 8, 6},
    {56, 8, 7},
    {64, 8, 8},
}};
static_assert(std::ranges::all_of(kTileLayouts, [](TileLayout t) { return t.columns * t.rows == t.size; }));

/// The layout of tables of this size, or null when there is none.
constexpr const TileLayout* tileLayoutOf(int size)
{
    const auto found = std::ranges::find(kTileLayouts, size, &TileLayout::size);
    return found == kTileLayouts.end() ? nullptr : found;
}

} // namespace lut
