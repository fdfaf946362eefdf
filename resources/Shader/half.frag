// The picture at half its size, multiplied by alpha so that clear pixels lend no colour.
#version 120
#include "picture.glsl"

uniform vec2 u_pass_resolution;

void main()
{
    vec2 quarter = 0.25 / u_pass_resolution;
    vec4 sum = weighted(picture(textureCoord - quarter)) + weighted(picture(textureCoord + quarter))
        + weighted(picture(textureCoord + vec2(quarter.x, -quarter.y)))
        + weighted(picture(textureCoord + vec2(-quarter.x, quarter.y)));
    gl_FragColor = 0.25 * sum;
}
