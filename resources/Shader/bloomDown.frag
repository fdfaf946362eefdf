// Glow: one rung, down.
#version 120
uniform float u_radius = 6.0; // percent of the height
#include "gaussDown.glsl"

uniform vec2 u_input_resolution[2]; // pixels

vec4 coarser(vec2 at)
{
    return splined(mSample1, u_input_resolution[1], at);
}
