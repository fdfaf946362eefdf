// Blur along one direction: weights fall linearly from the middle to both ends of `delta`. Two of them, across
// and down, make a soft round blur. Pixels are added up, or lie between blocks.
#version 120
#include "triangleBlur.glsl"

uniform sampler2D mSample1; // the blocks
uniform vec2 u_input_resolution[2];

void main()
{
    float pixels = sqrt(reach() * reach() + 1.0);
    vec2 step = turned(vec2(1.0, slope())) * u_offset[8];
    float last = isLong() ? 0.0 : min(ceil(pixels), 64.0) - 1.0;
    vec4 here;
    vec4 sum = vec4(0.0);
    float weights = 0.0;
    float i = -last;
    do {
        float part = 1.0 - abs(i) / pixels;
        here = picture(textureCoord + i * step);
        sum += part * weighted(here);
        weights += part;
        i += 1.0;
    } while (i <= last);

    vec2 pixel = floor(turned(textureCoord * u_resolution));
    float size = blockSize();
    float place = (pixel.x + 0.5) / size + 0.5;
    float block = floor(place);
    float beyond = place - block;
    float rows = size * slope();
    float row = rowFrom(pixel.y) - beyond * rows + (middlePixel(size) - 0.5 * (size - 1.0)) * slope();
    vec2 smaller = u_input_resolution[1];
    vec4 soft = vec4(0.0);
    float above = 0.0;
    do {
        soft += (1.0 - beyond) * share(row, above) * kept(mSample1, smaller, block, row, above)
            + beyond * share(row + rows, above) * kept(mSample1, smaller, block + 1.0, row + rows, above);
        above += 1.0;
    } while (above <= oblique());
    gl_FragColor = average(isLong() ? soft : sum, isLong() ? 1.0 : weights, here);
}
