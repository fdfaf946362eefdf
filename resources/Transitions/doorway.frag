// The first picture opens like two doors, the second comes forward.
#version 120
#include "transition.glsl"

uniform float u_depth = 0.6; // how far away the second picture starts, 0..1

vec4 transition(vec2 uv, float progress)
{
    float open = eased(progress);
    float side = uv.x < 0.5 ? -1.0 : 1.0;
    float x = abs(uv.x - 0.5); // 0 in the middle, 0.5 at the hinge
    // Each wing turns inward about its outer edge.
    float swing = open * 1.45;
    float c = cos(swing);
    float s = sin(swing);
    const float kEye = 1.2;
    // A wing's point w from the hinge is seen at x = (0.5 - w c) / (1 + w s / kEye).
    float w = (0.5 - x) / max(c + x * s / kEye, 0.001);
    float y = (uv.y - 0.5) * (1.0 + w * s / kEye) + 0.5;
    if (w <= 0.5 && y >= 0.0 && y <= 1.0) {
        vec4 wing = from(vec2(0.5 + side * (0.5 - w), y));
        wing.rgb *= 1.0 - 0.75 * open * smoothstep(0.0, 0.5, w);
        return wing;
    }
    float scale = 1.0 + u_depth * (1.0 - open);
    vec2 room = (uv - 0.5) * scale + 0.5;
    if (inside(room)) {
        vec4 colour = to(room);
        colour.rgb *= 0.4 + 0.6 * open;
        return colour;
    }
    // Its floor shows it again, faintly.
    vec2 floor_ = vec2(room.x, -room.y);
    return inside(floor_) ? vec4(to(floor_).rgb * 0.25 * (1.0 - floor_.y) * open, 1.0) : vec4(0.0, 0.0, 0.0, 1.0);
}
