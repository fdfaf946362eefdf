// Two sides of a turning cube.
#version 120
#include "transition.glsl"

uniform float u_distance = 0.4; // how far the cube moves back, 0..1

/// Position on a side that is turned by `angle` about its upright middle axis, or outside 0..1.
vec2 onSide(vec2 uv, float angle, float back)
{
    // The eye is 2 half-widths before the side at rest; the cube's middle lies one half-width behind it.
    vec2 eye = 2.0 * uv - 1.0;
    float c = cos(angle);
    float s = sin(angle);
    const float kEye = 2.0;
    float depth = kEye + 1.0 + back; // eye to the cube's middle
    // A point (a, h) of the side stands at x = a c + s, z = c - a s toward the eye.
    float a = (eye.x * (depth - c) / kEye - s) / (c - eye.x * s / kEye);
    float z = c - a * s;
    float h = eye.y * (depth - z) / kEye;
    return c - eye.x * s / kEye > 0.0 ? 0.5 + 0.5 * vec2(a, h) : vec2(-1.0);
}

vec4 transition(vec2 uv, float progress)
{
    float turn = eased(progress) * 1.57079633;
    float back = u_distance * 1.5 * sin(3.14159265 * progress);
    vec2 first = onSide(uv, -turn, back);
    vec2 second = onSide(uv, 1.57079633 - turn, back);
    vec4 colour = vec4(0.0, 0.0, 0.0, 1.0);
    if (inside(first)) {
        colour = from(first);
        colour.rgb *= 0.35 + 0.65 * cos(turn);
    } else if (inside(second)) {
        colour = to(second);
        colour.rgb *= 0.35 + 0.65 * sin(turn);
    }
    return colour;
}
