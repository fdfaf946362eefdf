// Motion blur: the nearest samples, of colours multiplied by alpha.
#version 120
#include "motionBlur.glsl"

void main()
{
    vec2 step = path() / 64.0;
    gl_FragColor = 0.25 * (weighted(picture(textureCoord - 1.5 * step)) + weighted(picture(textureCoord - 0.5 * step))
        + weighted(picture(textureCoord + 0.5 * step)) + weighted(picture(textureCoord + 1.5 * step)));
}
