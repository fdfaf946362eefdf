// Tiles of the lookup texture, and the text of the program.
#include "effects/lut/lutShader.h"

#include "pixels/numbers.h"

namespace lut {

namespace {

constexpr const char* kProgram = R"(
uniform sampler2D mSample0;
uniform sampler2D mSample1;
varying vec2 textureCoord;

vec3 lookUp(float tile, vec4 c)
{
    float ty = floor((tile + 0.5) / col);
    float tx = tile - ty * col;
    float x = tx / col + 0.5 / (block_size * col) + (1.0 / col - 1.0 / (block_size * col)) * c.b;
    float y = ty / row + 0.5 / (block_size * row) + (1.0 / row - 1.0 / (block_size * row)) * c.g;
    return texture2D(mSample1, vec2(x, y)).rgb;
}

void main()
{
    vec4 c = texture2D(mSample0, textureCoord);
    float k = c.r * (row * col - 1.0);
    gl_FragColor = vec4(mix(lookUp(floor(k), c), lookUp(ceil(k), c), fract(k)), c.a);
}
)";

u8 byteOf(float value) { return pixels::clampByte(pixels::truncated(value)); }

} // namespace

LookupTexture lookupTexture(const LutTable& table, const TileLayout& layout)
{
    const u32 size = u32(layout.size);
    LookupTexture texture{u32(layout.columns) * size, u32(layout.rows) * size, {}};
    texture.pixels.assign(std::size_t{texture.width} * texture.height * 4, 255);
    for (u32 tile = 0; tile < size; ++tile)
        for (u32 y = 0; y < size; ++y)
            for (u32 x = 0; x < size; ++x) {
                const u32 column = tile % u32(layout.columns) * size + x;
                const u32 row = tile / u32(layout.columns) * size + y;
                const LutEntry entry = table.entry(int(tile), int(y), int(x));
                u8* const pixel = texture.pixels.data() + (std::size_t{row} * texture.width + column) * 4;
                pixel[0] = byteOf(entry.b);
                pixel[1] = byteOf(entry.g);
                pixel[2] = byteOf(entry.r);
            }
    return texture;
}

std::string lookupShader(const TileLayout& layout)
{
    return "#define row " + std::to_string(layout.rows) + ".000\n#define col "
        + std::to_string(layout.columns) + ".000\n#define block_size " + std::to_string(layout.size)
        + ".000\n" + kProgram;
}

} // namespace lut
