// A drop falls into the picture, and its rings carry the second one.
#version 120
#include "transition.glsl"

uniform float u_waves = 9.0;    // rings in a picture height
uniform float u_strength = 0.8; // 0..1

vec4 transition(vec2 uv, float progress)
{
    vec2 p = centred(uv);
    float r = length(p);
    float reach = 0.5 * length(vec2(aspect(), 1.0)) + 0.25;
    float front = progress * reach;
    float behind = front - r;
    float envelope = smoothstep(-0.02, 0.05, behind) * exp(-5.0 * max(behind, 0.0)) * sin(3.14159265 * progress);
    vec2 push = p / max(r, 1.0e-4) * envelope * 0.06 * u_strength * sin(6.28318531 * u_waves * behind);
    vec2 at = mirrored(uv + push / vec2(aspect(), 1.0));
    vec4 colour = mix(from(at), to(at), smoothstep(0.0, 0.25, behind - 0.05 + 0.30 * progress * progress));
    colour.rgb += 0.35 * envelope * u_strength * cos(6.28318531 * u_waves * behind);
    return clamp(colour, 0.0, 1.0);
}
