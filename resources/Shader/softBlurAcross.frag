// Soft blur: one rung, across.
#version 120
uniform float u_radius = 2.0; // percent of the height
#include "gaussAcross.glsl"
