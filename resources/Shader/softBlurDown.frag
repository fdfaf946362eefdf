// Soft blur: one rung, down.
#version 120
uniform float u_radius = 2.0; // percent of the height
#include "gaussDown.glsl"
