// Mirrors close over the first picture and open on the second.
#version 120
#include "transition.glsl"

uniform float u_sides = 6.0;  // mirrors
uniform float u_turn = 120.0; // degrees

vec4 transition(vec2 uv, float progress)
{
    float closed = sin(3.14159265 * progress);
    vec2 p = centred(uv);
    float r = length(p);
    float wedge = 3.14159265 / max(floor(u_sides + 0.5), 2.0);
    float angle = atan(p.y, p.x) + radians(u_turn) * progress;
    float folded = abs(mod(angle, 2.0 * wedge) - wedge);
    vec2 mirror = mirrored(uncentred(r * vec2(cos(folded + progress), sin(folded + progress))));
    vec2 at = mix(uv, mirror, smoothstep(0.0, 0.9, closed));
    return mix(from(at), to(at), smoothstep(0.35, 0.65, progress));
}
