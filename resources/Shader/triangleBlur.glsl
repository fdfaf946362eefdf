// Blur along a line with weights that fall linearly from the middle to both ends of the reach. A step is one pixel of
// the side that the line is nearer to. Short blurs add up pixels. For long ones, a smaller picture keeps the mean of each
// block of pixels along the line, and all of the rows across it, so that edges in the line's direction stay sharp. Its
// block 0 and its last one lie outside and show the border. The second half of the rows lies beside the first, so the
// smaller picture has a little more than half of both sides. Oblique lines pass between two rows, which both have a share.
#include "picture.glsl"

uniform vec2 u_offset[9];             // [8]: one pixel, in texture coordinates
uniform vec2 delta = vec2(0.05, 0.0); // reach to one side, in texture coordinates

const float kMostPixels = 10.0; // reach of blurs that add up pixels

/// x and y exchanged where the line rather goes up: x is along it. Turns back, too.
vec2 turned(vec2 v)
{
    vec2 way = abs(delta * u_resolution);
    return way.x >= way.y ? v : v.yx;
}

/// Steps from the middle to either end.
float reach()
{
    return turned(abs(delta * u_resolution)).x;
}

/// Pixels up for one step along.
float slope()
{
    vec2 way = turned(delta * u_resolution);
    return way.y / (way.x != 0.0 ? way.x : 1.0);
}

/// True where blocks are used; small pictures have none.
bool isLong()
{
    return reach() > kMostPixels && turned(u_resolution).x > 60.0;
}

/// 1 where lines pass between the rows of blocks, 0 where they go along them.
float oblique()
{
    return isLong() && abs(slope()) > 0.0001 ? 1.0 : 0.0;
}

/// The place of a row for the functions below: its number where lines pass between rows, else its middle, or rounding
/// would find a row by chance.
float rowFrom(float number)
{
    return number + 0.5 - 0.5 * oblique();
}

/// The share of the row below a place, or of the one above (1).
float share(float row, float above)
{
    return abs(1.0 - above - oblique() * fract(row));
}

/// Pixels in a block. There are not more blocks than the smaller picture has room for.
float blockSize()
{
    return max(floor(0.16 * reach()), turned(u_resolution).x > 300.0 ? 4.0 : 5.0);
}

/// The pixel of a block whose row the block is kept in, counted from its first: the middle, or the one before.
float middlePixel(float size)
{
    return floor(0.5 * (size - 1.0));
}

/// Half the length of the smaller picture, where its second half begins.
float seam(vec2 smaller)
{
    return floor(0.5 * turned(smaller).x);
}

/// Rows that are kept of the border below the picture, and above it.
float margin(vec2 smaller)
{
    return floor(turned(smaller).y - 0.5 * turned(u_resolution).y);
}

/// Block and row of the texel at `textureCoord`.
vec2 blockHere(vec2 smaller)
{
    vec2 texel = floor(turned(textureCoord * smaller)) - vec2(0.0, margin(smaller));
    return texel.x < seam(smaller) ? texel : texel + vec2(-seam(smaller), turned(smaller).y);
}

/// What the smaller picture keeps of the row below a place, or of the one above (1).
vec4 kept(sampler2D source, vec2 smaller, float block, float row, float above)
{
    vec2 texel = vec2(block, floor(row) + above + margin(smaller)) + 0.5;
    texel += texel.y < turned(smaller).y ? vec2(0.0) : vec2(seam(smaller), -turned(smaller).y);
    return texture2D(source, turned(texel) / smaller);
}

/// What the picture shows there, multiplied by alpha; `place` counts pixels along the line, and up to the row.
vec4 shown(vec2 place, float above)
{
    return weighted(picture(turned(vec2(place.x, floor(place.y) + above) + 0.5) * u_offset[8]));
}
