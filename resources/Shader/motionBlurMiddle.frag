// Motion blur: samples four times as far apart.
#version 120
#include "motionBlur.glsl"

void main()
{
    gl_FragColor = fourAlong(mSample0, textureCoord, path() / 16.0);
}
