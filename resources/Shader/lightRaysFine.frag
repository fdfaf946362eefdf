// Light rays: the nearest samples.
#version 120
#include "lightRays.glsl"

void main()
{
    gl_FragColor = ray(mSample0, 1.0 / 343.0);
}
