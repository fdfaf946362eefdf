// Zoom through: streaks to the middle, the nearest samples.
#version 120
#include "zoomThrough.glsl"
#include "streaks.glsl"

void main()
{
    gl_FragColor = streak(mSample0, textureCoord, vec2(0.5), fineStep(rest()));
}
