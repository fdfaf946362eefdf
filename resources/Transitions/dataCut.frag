// Blocks of the second picture break in while the colours part.
#version 120
#include "transition.glsl"
#include "noise.glsl"

uniform float u_blocks = 12.0; // blocks in a picture height
uniform float u_shift = 0.6;   // 0..1

vec4 transition(vec2 uv, float progress)
{
    float moment = floor(progress * 18.0);
    float unrest = sin(3.14159265 * progress);
    vec2 block = floor(uv * vec2(aspect() * 0.6, 1.0) * u_blocks);
    float order = 0.7 * random(block + 3.0) + 0.3 * random(vec2(block.y, 9.0));
    float row = floor(uv.y * u_blocks * 2.0);
    float jump = (random(vec2(row, moment)) - 0.5) * step(1.0 - 0.6 * unrest, random(vec2(row, moment + 7.0)));
    vec2 at = vec2(fract(uv.x + 0.18 * u_shift * unrest * jump), uv.y);
    vec2 part = vec2(0.02 * u_shift * unrest * (random(vec2(moment, 2.0)) + 0.2), 0.0);
    bool next = order < progress * 1.1 - 0.05;
    vec4 centre = next ? to(at) : from(at);
    vec4 left = next ? to(at - part) : from(at - part);
    vec4 right = next ? to(at + part) : from(at + part);
    return vec4(left.r, centre.g, right.b, centre.a);
}
