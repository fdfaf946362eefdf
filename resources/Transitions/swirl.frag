// Both pictures wind up into a spiral and unwind as the second.
#version 120
#include "transition.glsl"

uniform float u_turns = 1.5;  // turns of the middle
uniform float u_radius = 0.9; // picture heights

vec4 transition(vec2 uv, float progress)
{
    vec2 p = centred(uv);
    float inner = clamp(1.0 - length(p) / max(u_radius, 0.01), 0.0, 1.0);
    float wound = 1.0 - abs(2.0 * progress - 1.0);
    float angle = 6.28318531 * u_turns * inner * inner * eased(wound);
    float c = cos(angle);
    float s = sin(angle);
    vec2 at = mirrored(uncentred(vec2(c * p.x - s * p.y, s * p.x + c * p.y)));
    return mix(from(at), to(at), smoothstep(0.35, 0.65, progress));
}
