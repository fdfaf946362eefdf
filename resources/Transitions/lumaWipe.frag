// The second picture appears in its brightest places first.
#version 120
#include "transition.glsl"
#include "colour.glsl"

uniform float u_softness = 0.3; // 0..1

vec4 transition(vec2 uv, float progress)
{
    vec4 next = to(uv);
    float soft = max(u_softness, 0.01);
    float when = 1.0 - luma(next.rgb);
    float edge = progress * (1.0 + soft);
    return mix(from(uv), next, smoothstep(when, when + soft, edge));
}
