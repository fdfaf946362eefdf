// The lookup on the GPU: a flat texture of tiles, and the program that reads it.
#pragma once

#include "core/Types.h"
#include "effects/lut/LutTable.h"
#include "lut/lutTiles.h"

#include <string>
#include <vector>

namespace lut {

struct LookupTexture {
    u32 width = 0;
    u32 height = 0;
    std::vector<u8> pixels; ///< blue, green, red, 255
};

/// One tile per red index, in reading order; across a tile runs blue, down it green.
LookupTexture lookupTexture(const LutTable& table, const TileLayout& layout);

/// Fragment program: picture in "mSample0", the texture in "mSample1". Blue and green are interpolated by the
/// texture unit, red between two tiles.
std::string lookupShader(const TileLayout& layout);

} // namespace lut
