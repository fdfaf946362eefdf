// What glows in a picture.
#include "picture.glsl"
#include "colour.glsl"

uniform float u_threshold = 0.7; // brightness that begins to glow, 0..1

vec3 glowing(vec4 here)
{
    return here.a * here.rgb * smoothstep(u_threshold, min(u_threshold + 0.25, 1.25), luma(here.rgb));
}
