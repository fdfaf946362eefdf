// Squares grow until the pictures can be exchanged, and shrink again.
#version 120
#include "transition.glsl"

uniform float u_size = 14.0; // side of the largest squares, percent of the height

vec4 transition(vec2 uv, float progress)
{
    float coarse = sin(3.14159265 * progress);
    float size = max(u_size / 100.0 * coarse * coarse, 1.0 / u_resolution.y);
    vec2 block = vec2(size / aspect(), size);
    vec2 at = clamp((floor((uv - 0.5) / block) + 0.5) * block + 0.5, 0.0, 1.0);
    vec2 texel = 0.25 * block;
    vec4 first = 0.5 * (from(at + texel) + from(at - texel));
    vec4 second = 0.5 * (to(at + texel) + to(at - texel));
    return mix(first, second, smoothstep(0.4, 0.6, progress));
}
