// Whip pan: six in each of the gaps that are left.
#version 120
#include "whipPanMoments.glsl"

void main()
{
    gl_FragColor = moments(1.0 / 144.0);
}
