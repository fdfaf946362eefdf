// Ink spreads over the first picture and clears into the second.
#version 120
#include "transition.glsl"
#include "noise.glsl"

uniform float u_scale = 2.6;                 // blots in a picture height
uniform vec3 u_ink = vec3(0.05, 0.06, 0.16); // colour of the wet edge
uniform float u_edge = 0.5;                  // width of the edge, 0..1

vec4 transition(vec2 uv, float progress)
{
    vec2 p = centred(uv);
    float shape = 0.75 * cloudNoise(p * u_scale + 11.0) + 0.25 * cloudNoise(p * u_scale * 4.0);
    float order = clamp(1.35 * (shape - 0.5) + 0.5, 0.0, 1.0) * 0.75 + 0.25 * clamp(length(p), 0.0, 1.0);
    float edge = 0.02 + 0.16 * u_edge;
    float d = progress * (1.0 + 2.0 * edge) - order; // above 0 the ink has arrived
    float wet = smoothstep(0.0, 0.25 * edge, d) * (1.0 - smoothstep(0.5 * edge, 2.0 * edge, d));
    vec4 colour = mix(from(uv), to(uv), smoothstep(0.2 * edge, edge, d));
    colour.rgb = mix(colour.rgb, u_ink, 0.9 * wet);
    return colour;
}
