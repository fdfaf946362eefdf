// Motion blur: the nearest samples, of colours multiplied by alpha.
#version 120
#include "motionBlur.glsl"

void main()
{
    vec2 gap = path() / 64.0;
    gl_FragColor = 0.25 * (weighted(picture(textureCoord - 1.5 * gap)) + weighted(picture(textureCoord - 0.5 * gap))
        + weighted(picture(textureCoord + 0.5 * gap)) + weighted(picture(textureCoord + 1.5 * gap)));
}
