// Whip pan: six moments in each gap of the wide ones.
#version 120
#include "whipPanMoments.glsl"

void main()
{
    gl_FragColor = moments(1.0 / 24.0);
}
