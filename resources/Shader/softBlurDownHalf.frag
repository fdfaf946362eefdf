// Soft blur: the rung of half the size, down.
#version 120
uniform float u_radius = 2.0; // percent of the height
#include "gaussDown.glsl"

vec4 coarser(vec2 at)
{
    return texture2D(mSample1, at);
}
