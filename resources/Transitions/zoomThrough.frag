// The camera rushes into the first picture and arrives in the second.
#version 120
#include "transition.glsl"
#include "noise.glsl"

uniform float u_strength = 0.7; // 0..1

vec4 transition(vec2 uv, float progress)
{
    float speed = sin(3.14159265 * progress);
    float zoomFrom = 1.0 / (1.0 + 2.5 * progress * progress);
    float zoomTo = 1.0 + 0.8 * (1.0 - progress) * (1.0 - progress);
    vec4 sum = vec4(0.0);
    float shift = random(gl_FragCoord.xy);
    float mixed = smoothstep(0.4, 0.6, progress);
    for (float i = 0.0; i < 16.0; i += 1.0) {
        float blur = 1.0 - u_strength * 0.35 * speed * (i + shift) / 16.0;
        vec2 p = (uv - 0.5) * blur;
        sum += mix(from(0.5 + p * zoomFrom), to(mirrored(0.5 + p * zoomTo)), mixed);
    }
    vec4 colour = sum / 16.0;
    colour.rgb *= 1.0 + 0.25 * speed * u_strength;
    return clamp(colour, 0.0, 1.0);
}
