// Light leaks in, burns the first picture out and leaves the second.
#version 120
#include "transition.glsl"
#include "noise.glsl"

uniform vec3 u_light = vec3(1.0, 0.38, 0.08); // colour of the leak
uniform float u_heat = 0.7;                   // 0..1

vec4 transition(vec2 uv, float progress)
{
    vec2 p = vec2(uv.x * aspect(), uv.y);
    float cloud = cloudNoise(p * 1.7 + vec2(2.0 * progress, 0.6 * progress));
    float leak = smoothstep(0.0, 0.7, 1.9 * progress - uv.x * 0.7 - 0.5 + 0.6 * cloud)
        * (1.0 - smoothstep(0.0, 0.7, 1.9 * progress - uv.x * 0.7 - 1.05 + 0.4 * cloud));
    float swap = smoothstep(0.45, 0.60, progress + 0.25 * (cloud - 0.5) - 0.1 * (uv.x - 0.5));
    vec4 colour = mix(from(uv), to(uv), swap);
    float glow = leak * sin(3.14159265 * progress) * (0.35 + 0.55 * u_heat);
    vec3 light = glow * mix(u_light, vec3(1.0, 0.95, 0.8), smoothstep(0.45, 0.9, glow));
    colour.rgb = 1.0 - (1.0 - colour.rgb) * (1.0 - clamp(1.2 * light, 0.0, 1.0));
    return colour;
}
