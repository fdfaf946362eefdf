// Zoom blur: four times as far apart.
#version 120
#include "zoomBlur.glsl"

void main()
{
    gl_FragColor = streak(mSample0, textureCoord, u_centre, middleStep(rest()));
}
