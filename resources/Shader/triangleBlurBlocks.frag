// Directional blur: the means of blocks, of colours multiplied by alpha.
#version 120
#include "triangleBlur.glsl"

uniform vec2 u_pass_resolution;

void main()
{
    float size = blockSize();
    vec2 here = blockHere(u_pass_resolution);
    vec2 first = vec2(size * (here.x - 1.0), rowFrom(here.y) - middlePixel(size) * slope());
    // Blocks behind the one outside are not used.
    float pixels = isLong() && first.x < turned(u_resolution).x + size ? size : 1.0;
    vec4 sum = vec4(0.0);
    float above = 0.0;
    do {
        vec2 place = first;
        float left = pixels;
        do {
            sum += share(place.y, above) * shown(place, above);
            place += vec2(1.0, slope());
            left -= 1.0;
        } while (left > 0.0);
        above += 1.0;
    } while (above <= oblique());
    gl_FragColor = sum / size;
}
