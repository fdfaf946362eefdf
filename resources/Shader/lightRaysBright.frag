// What shines, at half the size.
#version 120
#include "picture.glsl"
#include "colour.glsl"

uniform float u_threshold = 0.55; // brightness that shines, 0..1
uniform vec2 u_pass_resolution;

vec3 shining(vec2 place)
{
    vec4 here = picture(textureCoord + place / u_pass_resolution);
    return here.a * here.rgb * smoothstep(u_threshold, u_threshold + 0.2, luma(here.rgb));
}

void main()
{
    vec3 sum = shining(vec2(-0.25)) + shining(vec2(0.25)) + shining(vec2(0.25, -0.25)) + shining(vec2(-0.25, 0.25));
    gl_FragColor = vec4(0.25 * sum, 1.0);
}
