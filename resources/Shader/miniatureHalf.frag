// Miniature: the picture at half its size, multiplied by alpha. Colours are squared, so that bright points open into
// discs as in a lens.
#version 120
#include "picture.glsl"

uniform vec2 u_pass_resolution;

vec4 light(vec2 place)
{
    vec4 here = picture(textureCoord + place / u_pass_resolution);
    return weighted(vec4(here.rgb * here.rgb, here.a));
}

void main()
{
    gl_FragColor = 0.25
        * (light(vec2(-0.25)) + light(vec2(0.25)) + light(vec2(0.25, -0.25)) + light(vec2(-0.25, 0.25)));
}
