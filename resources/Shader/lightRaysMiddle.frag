// Light rays: samples seven times as far apart.
#version 120
#include "lightRays.glsl"

void main()
{
    gl_FragColor = ray(mSample0, 1.0 / 49.0);
}
