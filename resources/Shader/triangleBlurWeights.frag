// Directional blur: blocks are weighed.
#version 120
#include "triangleBlur.glsl"

uniform vec2 u_pass_resolution;

void main()
{
    float size = blockSize();
    vec2 here = blockHere(u_pass_resolution);
    float most = ceil(turned(u_resolution).x / size) + 1.0;
    // What blocks spread by themselves is taken off.
    float blocks = sqrt(max(reach() * reach() / (size * size) - 0.5, 1.0));
    float last = isLong() && here.x <= most ? ceil(blocks) - 1.0 : 0.0;
    vec4 sum = vec4(0.0);
    float weights = 0.0;
    float above = 0.0;
    do {
        float i = -last;
        do {
            float row = rowFrom(here.y) + i * size * slope();
            float part = (1.0 - abs(i) / blocks) * share(row, above);
            sum += part * kept(mSample0, u_pass_resolution, clamp(here.x + i, 0.0, most), row, above);
            weights += part;
            i += 1.0;
        } while (i <= last);
        above += 1.0;
    } while (above <= oblique());
    gl_FragColor = sum / weights;
}
